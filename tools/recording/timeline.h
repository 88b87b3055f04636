// One timeline of what a virtual device was told, what the daemon made of it and what it asked of
// the hardware: messages, panel reports, events, log lines and recorded calls, causes before their
// effects. What one thread did stays in its order: all of it is dated on that thread, to the
// microsecond in the log and to the nanosecond elsewhere.
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
    timeline_end,   // of the daemon, with its status
    timeline_note,  // of this program: what it has to say of the device
};

// The word that a kind stands under: "message", "event", "log", "hw", "service", "prop", "end";
// "--".
const char *timeline_kind_name(timeline_kind kind);

struct timeline_entry {
    int64_t time_ns = 0;  // of the wall clock, as the log has it
    timeline_kind kind = timeline_log;
    int thread = 0;  // 0: not the daemon's, or known by its name alone
    std::string text;
    std::string thread_name;  // where it is known without the device
    int priority = 0;         // of a log line, as its log has it; 0: not known
};

struct timeline {
    std::string root;
    int64_t start_ns = 0;
    int64_t messages_offset = 0;
    int64_t daemon_offset = 0;
    int64_t calls_offset = 0;
    int64_t services_offset = 0;
    std::map<std::string, std::string> properties;
    std::vector<timeline_entry> held_back;
};

// Entries younger than this wait for causes that are still being written.
constexpr int64_t timeline_hold_back_ns = 20000000;

// A timeline of the device at `root` that begins now, with what is written from now on.
timeline timeline_open(const std::string &root);

// What has been written since the last call and is old enough, in order.
std::vector<timeline_entry> timeline_read(timeline *line);

// Nanoseconds of the wall clock.
int64_t timeline_now_ns();

// The entry that a text of the log makes, an event or a line; one without text where it only says
// how an event travels.
timeline_entry make_log_entry(int64_t time_ns, const std::string &text);

// The entry in a line of the daemon's log, or one without text for a line that only says how an
// event travels. A line without a time is taken to be of `now_ns`.
timeline_entry parse_daemon_line(const std::string &line, int64_t now_ns);
