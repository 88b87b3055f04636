#include "tools/explain/decision.h"

#include <stdio.h>

#include <algorithm>
#include <string_view>

#include "tools/base/shown.h"
#include "tools/base/words.h"

namespace {

constexpr std::string_view moved_field = "moved";

const fact *find_fact(const decision &made, std::string_view name) {
    const auto found = std::find_if(made.facts.begin(), made.facts.end(),
                                    [&](const fact &each) { return each.name == name; });
    return found != made.facts.end() ? &*found : nullptr;
}

std::string number_text(double number, const char *format) {
    char text[64];
    snprintf(text, sizeof(text), format, number);
    return text;
}

// "GPU 596 -> 710 MHz, CLUSTER0 1766 -> 1613 MHz"
std::string moves_text(const decision &made) {
    std::string text;
    for (const moved_value &each : made.moved)
        text += (text.empty() ? "" : ", ") + each.what + " " +
                (each.from ? number_text(*each.from, "%.0f") : each.from_text) + " -> " +
                (each.to ? number_text(*each.to, "%.0f") : each.to_text) +
                (each.unit.empty() ? "" : " " + each.unit);
    return text;
}

// What stands for "{name}", "{name:FORMAT}" or "{name:THING}" without its braces. False where the
// decision does not have it.
bool fill_field(const decision &made, std::string_view field, std::string *text) {
    const size_t colon = field.find(':');
    const std::string format(colon != std::string_view::npos ? field.substr(colon + 1) : "%.0f");
    if (field == moved_field) {
        *text += moves_text(made);
        return !made.moved.empty();
    }
    const fact *known = find_fact(made, field.substr(0, colon));
    if (known == nullptr)
        return false;
    if (known->is_text)
        *text += known->text;
    else if (format.find('%') != std::string::npos)
        *text += number_text(known->number, format.c_str());
    else
        *text += counted(static_cast<size_t>(std::max(known->number, 0.0)), format.c_str());
    return true;
}

// One form, with its parts in brackets where they can be filled. False where it cannot itself.
bool fill_form(const decision &made, std::string_view form, std::string *text) {
    while (!form.empty()) {
        const size_t special = std::min(form.find_first_of("{["), form.size());
        *text += form.substr(0, special);
        if (special == form.size())
            return true;
        const bool is_part = form[special] == '[';
        const size_t end = form.find(is_part ? ']' : '}', special);
        const std::string_view inside = form.substr(special + 1, end - special - 1);
        if (is_part) {
            std::string part;
            *text += fill_form(made, inside, &part) ? part : "";
        } else if (!fill_field(made, inside, text)) {
            return false;
        }
        form.remove_prefix(end + 1);
    }
    return true;
}

// The first of the forms, which a bar parts, that can be filled; else an empty text.
std::string fill(const decision &made, std::string_view forms) {
    for (;;) {
        const size_t bar = std::min(forms.find('|'), forms.size());
        std::string text;
        if (fill_form(made, forms.substr(0, bar), &text))
            return text;
        if (bar == forms.size())
            return {};
        forms.remove_prefix(bar + 1);
    }
}

}  // namespace

decision make_decision(const step &made_in, reason why) {
    decision made;
    made.time_ns = made_in.time_ns;
    made.why = why;
    return made;
}

void set_fact(decision *made, const char *name, double number) {
    made->facts.push_back({name, false, number, ""});
}

void set_fact(decision *made, const char *name, const std::string &text) {
    made->facts.push_back({name, true, 0, text});
}

std::optional<double> find_number(const decision &made, const char *name) {
    const fact *known = find_fact(made, name);
    if (known == nullptr || known->is_text)
        return std::nullopt;
    return known->number;
}

decision_kind decision_kind_of(const decision &made) {
    if (made.row == nullptr)
        return reason_row_of(made.why).kind;
    return made.row->failure ? decision_kind::failure : decision_kind::other;
}

const char *decision_reason_word(const decision &made) {
    return made.row != nullptr ? log_line_word(made.row->id) : reason_row_of(made.why).word;
}

std::string decision_sentence(const decision &made) {
    std::string text;
    if (made.row != nullptr) {
        std::vector<std::string> values;
        for (const fact &each : made.facts)
            values.push_back(each.text);
        text = log_line_sentence(*made.row, values);
    } else {
        text = fill(made, reason_row_of(made.why).sentence);
    }
    if (made.answer && *made.answer < 0)
        text = "refused, as the hardware library answers " + std::to_string(*made.answer) + ": " +
               text;
    return made.times > 1 ? text + ", " + std::to_string(made.times) + " times" : text;
}

std::string decision_detail(const decision &made) {
    return made.row != nullptr ? "" : fill(made, reason_row_of(made.why).detail);
}

std::string decision_text(const decision &made) {
    std::string text = number_text(static_cast<double>(made.time_ns) / 1e9, "+%.3f") + "  " +
                       shown(decision_sentence(made));
    const std::string detail = decision_detail(made);
    if (!detail.empty())
        text += "\n" + std::string(decision_indent, ' ') + shown(detail);
    return text;
}
