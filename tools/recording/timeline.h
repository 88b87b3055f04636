// One timeline of what a virtual device was told, what the daemon made of it and what it asked of
// the hardware: messages, panel reports, events, log lines and recorded calls, causes before their
// effects. What one thread did stays in its order: all of it is dated on that thread, to the
// microsecond in the log and to the nanosecond elsewhere.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tools/recording/record.h"

struct timeline {
    std::string root;
    int64_t start_ns = 0;
    int64_t messages_offset = 0;
    int64_t daemon_offset = 0;
    int64_t calls_offset = 0;
    int64_t services_offset = 0;
    std::map<std::string, std::string> properties;
    std::vector<record> held_back;
};

// Records younger than this wait for causes that are still being written.
constexpr int64_t timeline_hold_back_ns = 20000000;

// A timeline of the device at `root` that begins now, with what is written from now on.
timeline timeline_open(const std::string &root);

// The same with all that its files tell of the daemon that runs now.
timeline timeline_from_start(const std::string &root);

// What has been written since the last call and is old enough, in order.
std::vector<record> timeline_read(timeline *line);

// The record in a line of the daemon's log, or one without text for a line that only says how an
// event travels. A line without a time is taken to be of `now_ns`.
record parse_daemon_line(const std::string &line, int64_t now_ns);
