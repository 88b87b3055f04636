#include "tools/recording/log_lines.h"

#include <limits.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "tools/recording/tables.h"

namespace {

struct subject_title {
    log_subject subject;
    const char *title;
};

constexpr subject_title titles[] = {
    {log_subject::start, "Start-up"},
    {log_subject::library, "Libraries of the vendor"},
    {log_subject::event, "Events"},
    {log_subject::client, "Clients"},
    {log_subject::monitor, "Kernel event monitor"},
    {log_subject::app, "What is in front"},
    {log_subject::policy, "Policy and grants"},
    {log_subject::rate, "Frame rate and game tuner"},
    {log_subject::image, "Image engine"},
    {log_subject::thermal, "Thermal configurations"},
    {log_subject::mitigation, "Timed mitigation"},
    {log_subject::low_power, "Low power mode"},
    {log_subject::automode, "Automode"},
    {log_subject::profile, "Performance profiles"},
    {log_subject::timer, "Timers"},
    {log_subject::service, "Other services"},
    {log_subject::analyser, "Frame interval analysis: its life"},
    {log_subject::measuring, "Frame interval analysis: measuring"},
    {log_subject::scene, "Frame interval analysis: scenes"},
    {log_subject::active, "Frame interval analysis: working the caps"},
    {log_subject::caps, "Frequency caps"},
};
static_assert(titles[static_cast<size_t>(log_subject::caps)].subject == log_subject::caps,
              "a title a subject, in its order");

struct priority_words {
    log_priority priority;
    const char *words;
};

constexpr priority_words priorities[] = {
    {log_priority::error, "error"},
    {log_priority::info, "info"},
    {log_priority::debug_events, "debug 0"},
    {log_priority::debug_powerhal, "debug 5"},
    {log_priority::debug_features, "debug 7"},
};
static_assert(priorities[static_cast<size_t>(log_priority::debug_features)].priority ==
              log_priority::debug_features);

// A conversion of a pattern and the text before it.
struct piece {
    std::string literal;
    char conversion;  // d, u, x, c or s
    bool padded;      // blanks may stand before the value
};

struct compiled_row {
    const log_row *row;
    std::vector<piece> pieces;
    std::string tail;  // the text behind the last conversion
    size_t literal_length;
};

// Candidates by the first character of a text, those with the longest text of their own first.
struct line_index {
    std::vector<const log_row *> rows;  // by their id
    std::vector<compiled_row> compiled;
    std::array<std::vector<const compiled_row *>, 256> by_first;
};

compiled_row compile(const log_row &row) {
    compiled_row compiled = {&row, {}, "", 0};
    for (const char *at = row.pattern; *at != '\0'; ++at) {
        if (*at == '%' && at[1] != '%') {
            const bool padded = at[1] >= '0' && at[1] <= '9';
            at += 1 + strspn(at + 1, "0123456789l");
            compiled.pieces.push_back({std::move(compiled.tail), *at, padded});
            compiled.tail.clear();
        } else {
            compiled.tail += *at;
            compiled.literal_length += 1;
            at += *at == '%' ? 1 : 0;
        }
    }
    return compiled;
}

// Whether a text of this row may begin with the character.
bool may_begin_with(const compiled_row &row, char first) {
    const std::string &literal = row.pieces.empty() ? row.tail : row.pieces[0].literal;
    if (!literal.empty())
        return literal[0] == first;
    const bool digit = first >= '0' && first <= '9';
    return digit || first == '-' || row.pieces[0].conversion == 's';
}

line_index build_index() {
    line_index index;
    for (const auto &part : {log_start_lines, log_client_lines, log_resource_lines,
                             log_feature_lines, log_analyser_lines, log_caps_lines})
        for (const log_row &row : part) {
            index.rows.push_back(&row);
            index.compiled.push_back(compile(row));
        }
    // Not the stable sort: it asks for memory that may be refused, as a simulated daemon's is.
    std::sort(index.compiled.begin(), index.compiled.end(),
              [](const compiled_row &a, const compiled_row &b) {
                  return a.literal_length != b.literal_length ? a.literal_length > b.literal_length
                                                              : a.row->id < b.row->id;
              });
    for (const compiled_row &row : index.compiled)
        for (size_t first = 0; first < index.by_first.size(); ++first)
            if (may_begin_with(row, static_cast<char>(first)))
                index.by_first[first].push_back(&row);
    return index;
}

const line_index &the_index() {
    static const line_index index = build_index();
    return index;
}

// How many characters at the beginning of the text are a value of the conversion; 0: none are.
size_t value_length(char conversion, std::string_view text) {
    constexpr const char *decimal = "0123456789";
    if (conversion == 'c')
        return text.empty() ? 0 : 1;
    const size_t sign = conversion == 'd' && text.starts_with('-') ? 1 : 0;
    const char *digits = conversion == 'x' ? "0123456789abcdef" : decimal;
    const size_t end = std::min(text.find_first_not_of(digits, sign), text.size());
    return end > sign ? end : 0;
}

// Matches the row from its piece `at` on, and notes where the values stand.
bool match_from(const compiled_row &row, size_t at, std::string_view text,
                std::vector<std::string_view> *values) {
    values->resize(at);  // another row, or a shorter text, may have got further
    if (at == row.pieces.size())
        return text == row.tail;
    const piece &next = row.pieces[at];
    if (!text.starts_with(next.literal))
        return false;
    text.remove_prefix(next.literal.size());
    if (next.padded)
        text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    const auto match_after = [&](size_t length) {
        values->resize(at);
        values->push_back(text.substr(0, length));
        return match_from(row, at + 1, text.substr(length), values);
    };
    if (next.conversion != 's') {
        const size_t length = value_length(next.conversion, text);
        return length > 0 && match_after(length);
    }
    // The shortest text that lets the rest match; nothing but a text has a choice.
    const std::string_view after =
        at + 1 < row.pieces.size() ? row.pieces[at + 1].literal : row.tail;
    for (size_t length = text.find(after); length != std::string_view::npos;
         length = text.find(after, length + 1))
        if (match_after(length))
            return true;
    return false;
}

// The word of a choice "a|b|c" that a value stands for.
std::string_view choose_word(std::string_view words, const std::string &value) {
    char *end;
    long left = strtol(value.c_str(), &end, 10);
    if (left < 0 || *end != '\0')
        left = LONG_MAX;
    for (; left > 0 && words.find('|') != std::string_view::npos; --left)
        words.remove_prefix(words.find('|') + 1);
    return words.substr(0, words.find('|'));
}

}  // namespace

const log_row &log_row_of(log_line id) {
    return *the_index().rows[static_cast<size_t>(id)];
}

log_match log_line_match(const std::string &text) {
    std::string_view line = text;
    while (line.ends_with('\n'))
        line.remove_suffix(1);
    if (line.empty())
        return {};
    std::vector<std::string_view> values;
    for (const compiled_row *row : the_index().by_first[static_cast<unsigned char>(line[0])])
        if (line.ends_with(row->tail) && match_from(*row, 0, line, &values))
            return {row->row, {values.begin(), values.end()}};
    return {};
}

std::string log_line_sentence(const log_row &row, const std::vector<std::string> &values) {
    std::string sentence;
    if (row.sentence == nullptr)
        return sentence;
    std::string_view rest = row.sentence;
    for (size_t open; (open = rest.find('{')) != std::string_view::npos;) {
        const size_t close = rest.find('}', open);
        const std::string &value = values[static_cast<size_t>(rest[open + 1] - '1')];
        const std::string_view words = rest.substr(open + 2, close - open - 2);
        sentence += rest.substr(0, open);
        if (!words.empty())
            sentence += choose_word(words.substr(1), value);
        else
            sentence += value.empty() ? "(empty)" : value;
        rest.remove_prefix(close + 1);
    }
    return sentence.append(rest);
}

std::string log_line_text(log_line id, uint32_t number) {
    const compiled_row row = compile(log_row_of(id));
    return row.pieces[0].literal + std::to_string(number) + row.tail;
}

const char *log_line_word(log_line line) {
    constexpr const char *words[] = {
#define LOG_LINE_WORD(name) #name,
        LOG_LINES(LOG_LINE_WORD)
#undef LOG_LINE_WORD
    };
    return words[static_cast<size_t>(line)];
}

const char *log_subject_title(log_subject subject) {
    return titles[static_cast<size_t>(subject)].title;
}

const char *log_priority_words(log_priority priority) {
    return priorities[static_cast<size_t>(priority)].words;
}
