#include "tools/recording/timeline.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <utility>

#include "core/events.h"
#include "device/virtual_device.h"
#include "tools/recording/logcat.h"

namespace {

constexpr char event_prefix[] = "EV : ";
constexpr char callback_prefix[] = "Callback for ";
constexpr int64_t second_ns = 1000000000;

// How far the wall clock is ahead of the monotonic one: of several looks at both the one that was
// interrupted least.
int64_t monotonic_offset_ns() {
    constexpr int looks = 5;
    int64_t shortest = INT64_MAX;
    int64_t offset = 0;
    for (int look = 0; look < looks; ++look) {
        const int64_t before = device_now_ns();
        const int64_t wall = timeline_now_ns();
        const int64_t took = device_now_ns() - before;
        if (took < shortest) {
            shortest = took;
            offset = wall - before - took / 2;
        }
    }
    return offset;
}

std::string describe_event(int id) {
    const char *name = event_name(static_cast<uint32_t>(id));
    return std::to_string(id) + " " + (name != nullptr ? name : "?");
}

// A line of one of the device's files: nanoseconds of the monotonic clock, which is `offset_ns`
// behind the wall clock, the thread where the file has one, and what there is to show.
timeline_entry parse_stamped_line(const std::string &line, timeline_kind kind, bool has_thread,
                                  int64_t offset_ns) {
    timeline_entry entry = {atoll(line.c_str()) + offset_ns, kind, 0, "", "", 0};
    size_t at = line.find(' ');
    if (has_thread && at != std::string::npos) {
        entry.thread = atoi(line.c_str() + at);
        at = line.find(' ', at + 1);
    }
    if (at != std::string::npos)
        entry.text = line.substr(at + 1);
    return entry;
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

// Properties that have changed: no file dates them, so they are of now.
void read_changes(timeline *line) {
    std::map<std::string, std::string> now = read_properties(line->root);
    for (const auto &[name, value] : now) {
        const auto before = line->properties.find(name);
        if (before == line->properties.end() || before->second != value)
            line->held_back.push_back({timeline_now_ns(), timeline_property, 0,
                                       std::string(name).append(" ").append(value), "", 0});
    }
    line->properties = std::move(now);
}

void read_stamped(timeline *line, const char *file, int64_t *offset, timeline_kind kind,
                  bool has_thread, int64_t offset_ns) {
    for (const std::string &text : device_read_lines(line->root + file, offset))
        line->held_back.push_back(parse_stamped_line(text, kind, has_thread, offset_ns));
}

void read_log(timeline *line) {
    for (const std::string &text :
         device_read_lines(line->root + device_daemon_log, &line->daemon_offset)) {
        timeline_entry entry = parse_daemon_line(text, timeline_now_ns());
        if (!entry.text.empty())
            line->held_back.push_back(std::move(entry));
    }
}

}  // namespace

const char *timeline_kind_name(timeline_kind kind) {
    constexpr const char *names[] = {"message", "event", "log", "hw",
                                     "service", "prop",  "end", "--"};
    static_assert(std::size(names) == timeline_note + 1);
    return names[kind];
}

int64_t timeline_now_ns() {
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<int64_t>(now.tv_sec) * second_ns + now.tv_nsec;
}

timeline timeline_open(const std::string &root) {
    return {root,
            timeline_now_ns(),
            device_file_size(root + device_messages_log),
            device_file_size(root + device_daemon_log),
            device_file_size(root + device_calls_log),
            device_file_size(root + device_services_log),
            read_properties(root),
            {}};
}

timeline_entry make_log_entry(int64_t time_ns, const std::string &text) {
    timeline_entry entry = {time_ns, timeline_log, 0, text, "", 0};
    if (text.starts_with(event_prefix)) {
        entry.kind = timeline_event;
        entry.text = describe_event(atoi(text.c_str() + sizeof(event_prefix) - 1));
    } else if (text.starts_with(callback_prefix)) {
        entry.text.clear();
    }
    return entry;
}

timeline_entry parse_daemon_line(const std::string &line, int64_t now_ns) {
    logcat_line read;
    if (!logcat_read(line, now_ns, &read))
        // Not a line of the daemon's log: whatever else came out of it.
        return {now_ns, timeline_log, 0, line, "", 0};
    timeline_entry entry = make_log_entry(read.time_ns, read.text);
    entry.thread = read.thread;
    entry.priority = read.priority;
    return entry;
}

std::vector<timeline_entry> timeline_read(timeline *line) {
    const int64_t until_ns = timeline_now_ns() - timeline_hold_back_ns;
    const int64_t offset_ns = monotonic_offset_ns();
    read_stamped(line, device_messages_log, &line->messages_offset, timeline_message, false,
                 offset_ns);
    read_log(line);
    read_stamped(line, device_calls_log, &line->calls_offset, timeline_hardware, true, offset_ns);
    read_stamped(line, device_services_log, &line->services_offset, timeline_service, false,
                 offset_ns);
    read_changes(line);
    std::stable_sort(
        line->held_back.begin(), line->held_back.end(),
        [](const timeline_entry &a, const timeline_entry &b) { return a.time_ns < b.time_ns; });
    const auto young =
        std::find_if(line->held_back.begin(), line->held_back.end(),
                     [&](const timeline_entry &entry) { return entry.time_ns > until_ns; });
    std::vector<timeline_entry> old(std::make_move_iterator(line->held_back.begin()),
                                    std::make_move_iterator(young));
    line->held_back.erase(line->held_back.begin(), young);
    return old;
}
