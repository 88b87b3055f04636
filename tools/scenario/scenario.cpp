#include "tools/scenario/scenario.h"

#include <string.h>

#include <algorithm>

#include "core/events.h"
#include "tools/base/words.h"
#include "tools/scenario/scenario_match.h"

namespace {

constexpr char blanks[] = " \t\r";
constexpr char byte_order_mark[] = "\xef\xbb\xbf";  // that editors leave

// Splits at a separator that stands outside of quotes.
std::vector<std::string> split_at(const std::string &text, char separator) {
    std::vector<std::string> parts(1);
    bool quoted = false;
    bool escaped = false;  // by a backslash that is not escaped itself
    for (const char c : text) {
        if (c == '"' && !escaped)
            quoted = !quoted;
        escaped = quoted && c == '\\' && !escaped;
        if (c == separator && !quoted)
            parts.emplace_back();
        else
            parts.back() += c;
    }
    return parts;
}

// Takes the first word off a text.
std::string take_word(std::string *text) {
    const size_t end = text->find_first_of(blanks);
    std::string word = text->substr(0, end);
    *text = end != std::string::npos ? trimmed_text(text->substr(end)) : "";
    return word;
}

bool is_event(const std::string &text) {
    for (uint32_t id = 0; id < event_count; ++id)
        if (event_name(id) != nullptr &&
            names_event(text, std::to_string(id).append(" ").append(event_name(id))))
            return true;
    return false;
}

std::string read_pattern(std::string text, expectation *then) {
    constexpr char dots[] = " ...";
    std::string word = take_word(&text);
    const bool only = word == "only";
    pattern next = {pattern_kind::event, "", false, false, word == "no"};
    if (only || next.absent)
        word = take_word(&text);
    const auto kind = std::find_if(std::begin(pattern_words), std::end(pattern_words),
                                   [&](const char *known) { return word == known; });
    if (kind == std::end(pattern_words))
        return "unknown record '" + word + "'";
    next.kind = static_cast<pattern_kind>(kind - std::begin(pattern_words));
    then->only[static_cast<size_t>(pattern_stream(next.kind))] |= only;
    if (text == "..." || text.ends_with(dots)) {
        next.open = true;
        text = trimmed_text(text.substr(0, text.size() - strlen("...")));
    }
    std::vector<happening_word> tokens;
    if (!split_words(text, &tokens))
        return "a quote is not closed";
    next.exact = tokens.size() == 1 && tokens[0].quoted;
    // What must not come is meant however it goes on; an event has nothing more to say.
    next.open |= next.absent && !next.exact && next.kind != pattern_kind::event;
    next.text = next.exact ? tokens[0].text : text;
    if (next.text.empty() && !next.absent && !next.open)
        return "which " + word + "?";
    if (next.kind == pattern_kind::event && !next.text.empty() && !next.exact &&
        !is_event(next.text))
        return "no event is named '" + next.text + "'";
    if (next.kind == pattern_kind::hw && !next.text.empty() && !next.exact &&
        !names_call(next.text.substr(0, next.text.find(' '))))
        return "no library call is named '" + next.text + "'";
    then->patterns.push_back(next);
    return {};
}

std::string read_expectation(const std::string &text, expectation *then) {
    for (const std::string &part : split_at(text, ';')) {
        const std::string pattern_text = trimmed_text(part);
        if (pattern_text == "nothing") {
            then->nothing = true;
            continue;
        }
        std::string error = pattern_text.empty() ? "nothing is expected behind the bar"
                                                 : read_pattern(pattern_text, then);
        if (!error.empty())
            return error;
    }
    return {};
}

// What is missing, what fails at the start and the start itself come before anything else happens.
bool may_stand_here(const std::vector<scenario_step> &before, const happening &given) {
    const bool at_start = given.kind == happening_kind::start ||
                          given.kind == happening_kind::missing ||
                          (given.kind == happening_kind::failure && given.name != "allocation");
    return !at_start || std::all_of(before.begin(), before.end(), [](const scenario_step &step) {
        return is_preparation(step.given) || !step.story.empty();
    });
}

}  // namespace

bool is_preparation(const happening &given) {
    return given.kind == happening_kind::property || given.kind == happening_kind::answer ||
           given.kind == happening_kind::service || given.kind == happening_kind::missing ||
           given.kind == happening_kind::failure;
}

scenario_file read_scenarios(std::istream &input) {
    scenario_file file;
    int number = 0;
    const auto fail = [&](int line, const std::string &reason) {
        file.error = "line " + std::to_string(line) + ": " + reason;
        return file;
    };
    for (std::string line; std::getline(input, line);) {
        if (++number == 1 && line.starts_with(byte_order_mark))
            line.erase(0, strlen(byte_order_mark));
        const std::string text = trimmed_text(line);
        if (text.empty() || text[0] == '#')
            continue;
        if (text[0] == '=') {
            const std::string name = trimmed_text(text.substr(1));
            if (name.empty() || name.find(';') != std::string::npos)
                return fail(number, "a scenario has a name without ';' behind '='");
            file.scenarios.push_back({number, name, {}});
            continue;
        }
        if (file.scenarios.empty())
            return fail(number, "a scenario begins with '= NAME'");
        std::vector<scenario_step> &steps = file.scenarios.back().steps;
        if (text[0] == '|') {  // more of what must follow
            const std::string error = steps.empty() || !steps.back().expects
                                          ? "nothing is expected before this"
                                          : read_expectation(text.substr(1), &steps.back().then);
            if (!error.empty())
                return fail(number, error);
            continue;
        }
        scenario_step step = {number, text, "", {}, false, {}};
        std::string error;
        if (text[0] == '>') {
            step.story = trimmed_text(text.substr(1));
        } else {
            const std::vector<std::string> parts = split_at(text, '|');
            step.expects = parts.size() == 2;
            error = parts.size() > 2 ? "more than one bar" : read_happening(parts[0], &step.given);
            if (error.empty() && step.expects)
                error = read_expectation(parts[1], &step.then);
            if (error.empty() && !may_stand_here(steps, step.given))
                error = "this stands before the daemon starts";
        }
        if (!error.empty())
            return fail(number, error);
        steps.push_back(step);
    }
    if (file.scenarios.empty()) {
        file.error = "no scenario in it";
        return file;
    }
    for (const scenario &each : file.scenarios)
        if (std::none_of(each.steps.begin(), each.steps.end(),
                         [](const scenario_step &step) { return step.expects; }))
            return fail(each.line, "'" + each.name + "' expects nothing");
    return file;
}
