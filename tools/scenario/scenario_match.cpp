#include <algorithm>
#include <map>

#include "tools/scenario/scenario.h"

const char *const pattern_words[pattern_kinds] = {"event", "log",     "info", "error",
                                                  "hw",    "service", "prop", "end"};

namespace {

constexpr char thermal_poll_call[] = "get_num_of_thermal_config_desc";

bool is_log(pattern_kind kind) {
    return kind == pattern_log || kind == pattern_info || kind == pattern_error;
}

timeline_kind records_of(pattern_kind kind) {
    constexpr timeline_kind records[pattern_kinds] = {
        timeline_event,    timeline_log,     timeline_log,      timeline_log,
        timeline_hardware, timeline_service, timeline_property, timeline_end};
    return records[kind];
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

bool matches(const pattern &wanted, const timeline_entry &record) {
    constexpr int info_priority = 4;
    constexpr int error_priority = 6;
    if (records_of(wanted.kind) != record.kind)
        return false;
    if (record.priority != 0 &&
        ((wanted.kind == pattern_info && record.priority != info_priority) ||
         (wanted.kind == pattern_error && record.priority != error_priority)))
        return false;
    if (wanted.text.empty())
        return true;
    if (wanted.kind == pattern_event && !wanted.exact && !wanted.open)
        return names_event(wanted.text, record.text);
    const std::string expected = wanted.exact ? wanted.text : normalised(wanted.text);
    const std::string seen = wanted.exact ? record.text : normalised(record.text);
    return wanted.open ? seen.starts_with(expected) : seen == expected;
}

std::string say_pattern(const pattern &wanted) {
    return std::string(pattern_words[wanted.kind]).append(" ").append(wanted.text);
}

// Whose order a pattern keeps: of calls those of one name, as it is not settled which feature hears
// of an event first; of other records those of its kind.
std::string order_of(const pattern &wanted) {
    return wanted.kind == pattern_hw ? wanted.text.substr(0, wanted.text.find(' ')) : "";
}

// What must follow among other records.
std::string check_among(const expectation &then, pattern_kind stream,
                        const std::vector<timeline_entry> &records) {
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
                       const std::vector<timeline_entry> &records) {
    std::vector<const pattern *> wanted;
    for (const pattern &each : then.patterns)
        if (pattern_stream(each.kind) == stream && !each.absent)
            wanted.push_back(&each);
    size_t next = 0;
    for (const timeline_entry &record : records) {
        if (record.kind != records_of(stream))
            continue;
        if (next == wanted.size() || !matches(*wanted[next], record))
            return "did not expect " + std::string(pattern_words[stream]) + " " +
                   without_newlines(record.text) +
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
    return is_log(kind) ? pattern_log : kind;
}

std::string trimmed_text(const std::string &text) {
    const size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r") + 1 - first);
}

std::string check_expectation(const expectation &then, const std::vector<timeline_entry> &all) {
    // The polls of the thermal engine come every second until it is there, whatever else happens.
    const bool polls_count =
        std::any_of(then.patterns.begin(), then.patterns.end(),
                    [](const pattern &wanted) { return wanted.text == thermal_poll_call; });
    std::vector<timeline_entry> records = all;
    std::erase_if(records, [&](const timeline_entry &record) {
        return !polls_count && record.kind == timeline_hardware && record.text == thermal_poll_call;
    });
    for (const timeline_entry &record : records)
        if (then.nothing && record.kind != timeline_message && record.kind != timeline_note)
            return "expected nothing, not " + without_newlines(record.text);
    for (const pattern &wanted : then.patterns)
        if (wanted.absent)
            for (const timeline_entry &record : records)
                if (matches(wanted, record))
                    return "did not expect " + say_pattern(wanted);
    for (const pattern_kind stream :
         {pattern_event, pattern_log, pattern_hw, pattern_service, pattern_prop, pattern_end}) {
        std::string wrong = then.only[stream] ? check_only(then, stream, records)
                                              : check_among(then, stream, records);
        if (!wrong.empty())
            return wrong;
    }
    return {};
}
