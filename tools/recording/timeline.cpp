#include "tools/recording/timeline.h"

#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <utility>

#include "device/virtual_device.h"
#include "tools/base/clock.h"
#include "tools/base/files.h"
#include "tools/recording/logcat.h"

namespace {

// How far the wall clock is ahead of the monotonic one: of several looks at both the one that was
// interrupted least.
int64_t monotonic_offset_ns() {
    constexpr int looks = 5;
    int64_t shortest = INT64_MAX;
    int64_t offset = 0;
    for (int look = 0; look < looks; ++look) {
        const int64_t before = monotonic_ns();
        const int64_t wall = wall_ns();
        const int64_t took = monotonic_ns() - before;
        if (took < shortest) {
            shortest = took;
            offset = wall - before - took / 2;
        }
    }
    return offset;
}

// A line of one of the device's files: nanoseconds of the monotonic clock, which is `offset_ns`
// behind the wall clock, the thread where the file has one, and what there is to show.
record parse_stamped_line(const std::string &line, record_kind kind, int64_t offset_ns) {
    const int64_t time_ns = atoll(line.c_str()) + offset_ns;
    size_t at = line.find(' ');
    int32_t thread = 0;
    if (kind == record_kind::call && at != std::string::npos) {
        thread = atoi(line.c_str() + at);
        at = line.find(' ', at + 1);
    }
    const std::string text = at != std::string::npos ? line.substr(at + 1) : "";
    record made;
    if (kind == record_kind::call)
        made = make_call_record(time_ns, text);
    else if (kind == record_kind::service)
        made = make_service_record(time_ns, text);
    else
        made.text = text;
    made.kind = kind;
    made.time_ns = time_ns;
    made.thread = thread;
    return made;
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
    std::map<std::string, std::string> present = read_properties(line->root);
    for (const auto &[name, value] : present) {
        const auto before = line->properties.find(name);
        if (before == line->properties.end() || before->second != value)
            line->held_back.push_back(
                make_property_record(wall_ns(), std::string(name).append(" ").append(value)));
    }
    line->properties = std::move(present);
}

void read_stamped(timeline *line, const char *file, int64_t *offset, record_kind kind,
                  int64_t offset_ns) {
    for (const std::string &text : read_lines(line->root + file, offset))
        line->held_back.push_back(parse_stamped_line(text, kind, offset_ns));
}

void read_log(timeline *line) {
    for (const std::string &text :
         read_lines(line->root + device_daemon_log, &line->daemon_offset)) {
        record came = parse_daemon_line(text, wall_ns());
        if (!came.text.empty())
            line->held_back.push_back(std::move(came));
    }
}

}  // namespace

timeline timeline_open(const std::string &root) {
    return {root,
            wall_ns(),
            file_size(root + device_messages_log),
            file_size(root + device_daemon_log),
            file_size(root + device_calls_log),
            file_size(root + device_services_log),
            read_properties(root),
            {}};
}

timeline timeline_from_start(const std::string &root) {
    timeline line;
    line.root = root;
    return line;
}

record parse_daemon_line(const std::string &line, int64_t now_ns) {
    logcat_line read;
    if (logcat_read(line, now_ns, &read))
        return logcat_record(read);
    record other;  // not a line of the daemon's log: whatever else came out of it
    other.time_ns = now_ns;
    other.text = line;
    return other;
}

std::vector<record> timeline_read(timeline *line) {
    const int64_t until_ns = wall_ns() - timeline_hold_back_ns;
    const int64_t offset_ns = monotonic_offset_ns();
    read_stamped(line, device_messages_log, &line->messages_offset, record_kind::message,
                 offset_ns);
    read_log(line);
    read_stamped(line, device_calls_log, &line->calls_offset, record_kind::call, offset_ns);
    read_stamped(line, device_services_log, &line->services_offset, record_kind::service,
                 offset_ns);
    read_changes(line);
    std::stable_sort(line->held_back.begin(), line->held_back.end(),
                     [](const record &a, const record &b) { return a.time_ns < b.time_ns; });
    const auto young = std::find_if(line->held_back.begin(), line->held_back.end(),
                                    [&](const record &each) { return each.time_ns > until_ns; });
    std::vector<record> old(std::make_move_iterator(line->held_back.begin()),
                            std::make_move_iterator(young));
    line->held_back.erase(line->held_back.begin(), young);
    return old;
}
