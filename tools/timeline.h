// One timeline of what a virtual device was told, what the daemon made of it and what it asked of
// the hardware: messages, events, log lines and recorded calls by their time. Times of log lines
// are whole milliseconds; within one millisecond a message comes first, then the log, then the
// calls.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

enum timeline_kind {
    timeline_message,
    timeline_event,
    timeline_log,
    timeline_hardware,
    timeline_service,
    timeline_property,
};

struct timeline_entry {
    int64_t time_ms;  // of the wall clock, as the log has it
    timeline_kind kind;
    std::string text;
};

struct timeline {
    std::string root;
    int64_t start_ms;
    int64_t messages_offset;
    int64_t daemon_offset;
    int64_t calls_offset;
    int64_t services_offset;
    std::map<std::string, std::string> properties;
    bool colour;
};

// A timeline of the device at `root` that begins now, with what is written from now on.
timeline timeline_open(const std::string &root);

// What has been written since the last call, in order.
std::vector<timeline_entry> timeline_read(timeline *line);

// One line of the timeline: "+12.345  event    43 EV_MODE_GAME_DEFAULT".
void timeline_print(const timeline *line, const timeline_entry &entry);

// The entry in a line of the daemon's log, or one without text for a line that only says how an
// event travels. A line without a time is taken to be of `now_ms`.
timeline_entry parse_daemon_line(const std::string &line, int64_t now_ms);
