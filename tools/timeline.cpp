#include "tools/timeline.h"

#include <stdio.h>
#include <stdlib.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <utility>

#include "core/events.h"
#include "device/virtual_device.h"
#include "platform/clock.h"

namespace {

constexpr char event_prefix[] = "EV : ";
constexpr char callback_prefix[] = "Callback for ";

struct kind_style {
    const char *name;
    const char *colour;
};

constexpr kind_style styles[] = {{"message", "\033[1;36m"}, {"event", "\033[33m"},
                                 {"log", "\033[2m"},        {"hw", "\033[1;32m"},
                                 {"service", "\033[1;35m"}, {"prop", "\033[1;34m"}};

int64_t size_of(const std::string &path) {
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    return error ? 0 : static_cast<int64_t>(size);
}

int64_t wall_clock_ns() {
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec;
}

int64_t wall_clock_ms() {
    return wall_clock_ns() / 1000000;
}

// The log's time as milliseconds of the wall clock; the line has no year.
int64_t parse_wall_time(const std::string &line, int64_t now_ms) {
    const time_t now = static_cast<time_t>(now_ms / 1000);
    tm local;
    localtime_r(&now, &local);
    int ms = 0;
    if (sscanf(line.c_str(), "%d-%d %d:%d:%d.%d", &local.tm_mon, &local.tm_mday, &local.tm_hour,
               &local.tm_min, &local.tm_sec, &ms) != 6)
        return now_ms;
    local.tm_mon -= 1;
    local.tm_isdst = -1;
    return static_cast<int64_t>(mktime(&local)) * 1000 + ms;
}

std::string describe_event(int id) {
    const char *name = event_name(static_cast<uint32_t>(id));
    return std::to_string(id) + " " + (name != nullptr ? name : "?");
}

// A line of the messages or the calls file: nanoseconds of the monotonic clock, which is
// `offset_ns` behind the wall clock, some words, and what there is to show.
timeline_entry parse_stamped_line(const std::string &line, timeline_kind kind, int skip_words,
                                  int64_t offset_ns) {
    size_t at = line.find(' ');
    for (int word = 0; word < skip_words && at != std::string::npos; ++word)
        at = line.find(' ', at + 1);
    return {(atoll(line.c_str()) + offset_ns) / 1000000, kind,
            at == std::string::npos ? "" : line.substr(at + 1)};
}

std::map<std::string, std::string> read_properties(const std::string &root) {
    std::map<std::string, std::string> properties;
    std::error_code error;
    for (const auto &file : std::filesystem::directory_iterator(root + "/properties", error)) {
        const std::string name = file.path().filename();
        std::string value;
        std::ifstream content(file.path());
        std::getline(content, value);
        if (name[0] != '.')
            properties[name] = value;
    }
    return properties;
}

// Properties that have changed, which no file dates.
void read_changes(timeline *line, std::vector<timeline_entry> *entries) {
    std::map<std::string, std::string> now = read_properties(line->root);
    for (const auto &[name, value] : now) {
        const auto before = line->properties.find(name);
        if (before == line->properties.end() || before->second != value)
            entries->push_back(
                {wall_clock_ms(), timeline_property, std::string(name).append(" ").append(value)});
    }
    line->properties = std::move(now);
}

}  // namespace

timeline timeline_open(const std::string &root) {
    return {root,
            wall_clock_ms(),
            size_of(root + device_messages_log),
            size_of(root + device_daemon_log),
            size_of(root + device_calls_log),
            size_of(root + device_services_log),
            read_properties(root),
            isatty(STDOUT_FILENO) == 1};
}

timeline_entry parse_daemon_line(const std::string &line, int64_t now_ms) {
    timeline_entry entry = {now_ms, timeline_log, ""};
    const size_t text = line.find(": ", line.find_first_not_of("0123456789-:. "));
    if (text == std::string::npos) {
        entry.text = line;  // not a line of the daemon's log: whatever else came out of it
        return entry;
    }
    entry.time_ms = parse_wall_time(line, now_ms);
    entry.text = line.substr(text + 2);
    if (entry.text.starts_with(event_prefix)) {
        entry.kind = timeline_event;
        entry.text = describe_event(atoi(entry.text.c_str() + sizeof(event_prefix) - 1));
    } else if (entry.text.starts_with(callback_prefix)) {
        entry.text.clear();
    }
    return entry;
}

std::vector<timeline_entry> timeline_read(timeline *line) {
    std::vector<timeline_entry> entries;
    const int64_t offset_ns = wall_clock_ns() - clock_monotonic_ns();
    for (const std::string &text :
         device_read_lines(line->root + device_messages_log, &line->messages_offset))
        entries.push_back(parse_stamped_line(text, timeline_message, 0, offset_ns));
    for (const std::string &text :
         device_read_lines(line->root + device_daemon_log, &line->daemon_offset)) {
        timeline_entry entry = parse_daemon_line(text, wall_clock_ms());
        if (!entry.text.empty())
            entries.push_back(entry);
    }
    for (const std::string &text :
         device_read_lines(line->root + device_calls_log, &line->calls_offset))
        entries.push_back(parse_stamped_line(text, timeline_hardware, 1, offset_ns));
    for (const std::string &text :
         device_read_lines(line->root + device_services_log, &line->services_offset))
        entries.push_back(parse_stamped_line(text, timeline_service, 0, offset_ns));
    read_changes(line, &entries);
    std::stable_sort(
        entries.begin(), entries.end(),
        [](const timeline_entry &a, const timeline_entry &b) { return a.time_ms < b.time_ms; });
    return entries;
}

void timeline_print(const timeline *line, const timeline_entry &entry) {
    const kind_style &style = styles[entry.kind];
    const double seconds = static_cast<double>(entry.time_ms - line->start_ms) / 1000.0;
    printf("+%.3f  %s%-7s%s  %s\n", std::max(seconds, 0.0), line->colour ? style.colour : "",
           style.name, line->colour ? "\033[0m" : "", entry.text.c_str());
}
