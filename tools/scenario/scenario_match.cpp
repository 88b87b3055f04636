#include "tools/scenario/scenario_match.h"

#include <algorithm>
#include <map>

#include "tools/base/words.h"

const char *const pattern_words[pattern_kinds] = {"event", "log",     "info", "error",
                                                  "hw",    "service", "prop", "end"};

namespace {

constexpr char thermal_poll_call[] = "get_num_of_thermal_config_desc";

bool is_log(pattern_kind kind) {
    return kind == pattern_kind::log || kind == pattern_kind::info || kind == pattern_kind::error;
}

record_kind records_of(pattern_kind kind) {
    constexpr record_kind records[pattern_kinds] = {
        record_kind::event, record_kind::log,     record_kind::log,      record_kind::log,
        record_kind::call,  record_kind::service, record_kind::property, record_kind::end};
    return records[static_cast<size_t>(kind)];
}

std::string without_newlines(const std::string &text) {
    return text.substr(0, text.find_last_not_of('\n') + 1);
}

// Runs of blanks as one, as the words of a line are split anyway.
std::string normalised(const std::string &text) {
    std::string result;
    for (const char c : trimmed_text(without_newlines(text)))
        if (!(c == ' ' && result.ends_with(' ')))
            result += c;
    return result;
}

std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(tolower(c)); });
    return text;
}

bool matches(const pattern &wanted, const record &came) {
    constexpr int info_priority = 4;
    constexpr int error_priority = 6;
    if (records_of(wanted.kind) != came.kind)
        return false;
    if (came.priority != 0 &&
        ((wanted.kind == pattern_kind::info && came.priority != info_priority) ||
         (wanted.kind == pattern_kind::error && came.priority != error_priority)))
        return false;
    if (wanted.text.empty())
        return true;
    if (wanted.kind == pattern_kind::event && !wanted.exact && !wanted.open)
        return names_event(wanted.text, came.text);
    const std::string expected = wanted.exact ? wanted.text : normalised(wanted.text);
    const std::string given = wanted.exact ? came.text : normalised(came.text);
    return wanted.open ? given.starts_with(expected) : given == expected;
}

std::string say_pattern(const pattern &wanted) {
    return std::string(pattern_words[static_cast<size_t>(wanted.kind)])
        .append(" ")
        .append(wanted.text);
}

// Whose order a pattern keeps: of calls those of one name, as it is not settled which feature hears
// of an event first; of other records those of its kind.
std::string order_of(const pattern &wanted) {
    return wanted.kind == pattern_kind::hw ? wanted.text.substr(0, wanted.text.find(' ')) : "";
}

// What must follow among other records.
std::string check_among(const expectation &then, pattern_kind stream,
                        const std::vector<record> &records) {
    std::map<std::string, size_t> next;
    for (const pattern &wanted : then.patterns) {
        if (pattern_stream(wanted.kind) != stream || wanted.absent)
            continue;
        size_t &at = next[order_of(wanted)];
        while (at < records.size() && !matches(wanted, records[at]))
            ++at;
        if (at == records.size())
            return "expected " + say_pattern(wanted);
        ++at;
    }
    return {};
}

// What must follow and no other record of the stream.
std::string check_only(const expectation &then, pattern_kind stream,
                       const std::vector<record> &records) {
    std::vector<const pattern *> wanted;
    for (const pattern &each : then.patterns)
        if (pattern_stream(each.kind) == stream && !each.absent)
            wanted.push_back(&each);
    size_t next = 0;
    for (const record &came : records) {
        if (came.kind != records_of(stream))
            continue;
        if (next == wanted.size() || !matches(*wanted[next], came))
            return "did not expect " + std::string(pattern_words[static_cast<size_t>(stream)]) +
                   " " + without_newlines(came.text) +
                   (next < wanted.size() ? " before " + say_pattern(*wanted[next]) : "");
        ++next;
    }
    return next < wanted.size() ? "expected " + say_pattern(*wanted[next]) : "";
}

}  // namespace

bool names_event(const std::string &wanted, const std::string &record) {
    const std::string event = lowered(record);
    const std::string name = event.substr(event.find(' ') + 1);
    const std::string text = lowered(wanted);
    return text == event || text == event.substr(0, event.find(' ')) || text == name ||
           (name.starts_with("ev_") && text == name.substr(3));
}

// The first of the kinds that look at the same records.
pattern_kind pattern_stream(pattern_kind kind) {
    return is_log(kind) ? pattern_kind::log : kind;
}

std::string check_expectation(const expectation &then, const std::vector<record> &all) {
    // The polls of the thermal engine come every second until it is there, whatever else happens.
    const bool polls_count =
        std::any_of(then.patterns.begin(), then.patterns.end(),
                    [](const pattern &wanted) { return wanted.text == thermal_poll_call; });
    std::vector<record> records = all;
    std::erase_if(records, [&](const record &came) {
        return !polls_count && record_is_call(came, thermal_poll_call);
    });
    for (const record &came : records)
        if (then.nothing && came.kind != record_kind::message && came.kind != record_kind::note)
            return "expected nothing, not " + without_newlines(came.text);
    for (const pattern &wanted : then.patterns)
        if (wanted.absent)
            for (const record &came : records)
                if (matches(wanted, came))
                    return "did not expect " + say_pattern(wanted);
    for (const pattern_kind stream :
         {pattern_kind::event, pattern_kind::log, pattern_kind::hw, pattern_kind::service,
          pattern_kind::prop, pattern_kind::end}) {
        std::string wrong = then.only[static_cast<size_t>(stream)]
                                ? check_only(then, stream, records)
                                : check_among(then, stream, records);
        if (!wrong.empty())
            return wrong;
    }
    return {};
}
