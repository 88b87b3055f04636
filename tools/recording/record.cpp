#include "tools/recording/record.h"

#include <stdlib.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <sstream>
#include <utility>

#include "core/events.h"

namespace {

constexpr char blanks[] = "  ";  // between a service and what it is told

record make_record(record_kind kind, int64_t time_ns, std::string text) {
    record made;
    made.kind = kind;
    made.time_ns = time_ns;
    made.text = std::move(text);
    return made;
}

}  // namespace

const char *record_word(record_kind kind) {
    constexpr const char *words[] = {"message", "event", "log", "hw",
                                     "service", "prop",  "end", "--"};
    static_assert(std::size(words) == static_cast<size_t>(record_kind::note) + 1);
    return words[static_cast<size_t>(kind)];
}

record make_event_record(int64_t time_ns, uint32_t event) {
    const char *name = event_name(event);
    record made = make_record(record_kind::event, time_ns,
                              std::to_string(event) + " " + (name != nullptr ? name : "?"));
    made.event = event;
    return made;
}

record make_log_record(int64_t time_ns, const std::string &text) {
    log_match line = log_line_match(text);
    if (line.row != nullptr && line.row->id == log_line::event_raised)
        return make_event_record(
            time_ns, static_cast<uint32_t>(strtoul(line.values[0].c_str(), nullptr, 10)));
    if (line.row != nullptr && line.row->id == log_line::callback_runs)
        return make_record(record_kind::log, time_ns, {});
    record made = make_record(record_kind::log, time_ns, text);
    made.row = line.row;
    made.values = std::move(line.values);
    return made;
}

record make_call_record(int64_t time_ns, const std::string &text) {
    record made = make_record(record_kind::call, time_ns, text);
    std::istringstream words(text);
    words >> made.name;
    made.values.assign(std::istream_iterator<std::string>(words), {});
    return made;
}

record make_service_record(int64_t time_ns, const std::string &text) {
    record made = make_record(record_kind::service, time_ns, text);
    const size_t gap = text.find(blanks);
    made.name = text.substr(0, gap);
    if (gap == std::string::npos)
        return made;
    const std::string said = text.substr(gap + 2);
    const size_t last = std::min(said.rfind(' '), said.size());
    made.values = {said.substr(0, last), last < said.size() ? said.substr(last + 1) : ""};
    return made;
}

record make_property_record(int64_t time_ns, const std::string &text) {
    record made = make_record(record_kind::property, time_ns, text);
    const size_t blank = std::min(text.find(' '), text.size());
    made.name = text.substr(0, blank);
    made.values = {blank < text.size() ? text.substr(blank + 1) : ""};
    return made;
}

std::string record_thread(const record &of) {
    return of.thread_name.empty() ? std::to_string(of.thread) : of.thread_name;
}

bool record_is_line(const record &of, log_line line) {
    return of.row != nullptr && of.row->id == line;
}

bool record_is_call(const record &of, const char *name) {
    return of.kind == record_kind::call && of.name == name;
}

bool record_is_refused(const record &of) {
    return of.kind == record_kind::call && of.answer && *of.answer < 0;
}

double record_number(const record &of, size_t index) {
    return index < of.values.size() ? strtod(of.values[index].c_str(), nullptr) : 0;
}

int32_t record_integer(const record &of, size_t index) {
    const double number = record_number(of, index);
    return static_cast<int32_t>(
        std::clamp(std::isnan(number) ? 0 : number, double{INT32_MIN}, double{INT32_MAX}));
}
