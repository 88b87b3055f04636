// A moment of a daemon's life: what it took up, and what came of it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "client/dvx_client.h"
#include "platform/recording.h"
#include "tools/recording/log_lines.h"
#include "tools/recording/timeline.h"

// Something that a daemon took up, or a stretch of its log that belongs together, and what came of
// it.
enum moment_kind {
    moment_unknown,  // of a log: what was taken is not said
    moment_start,
    moment_message,
    moment_panel,
    moment_interval,
    moment_timers,
    moment_thermal,
};

// An entry, and which line of the log it is, where it is one.
struct told_entry {
    timeline_entry entry;
    log_match line;
};

struct moment {
    moment_kind kind = moment_unknown;
    int64_t time_ns = 0;  // since the source's first
    std::string thread;
    dvx_message message = {};
    bool is_text = false;  // of the message
    bool on = false;       // of the panel
    int32_t interval_us = 0;
    std::vector<told_entry> came;
};

// The kind of a recorded happening.
moment_kind moment_kind_of(recorded_kind kind);

// Adds what came, with its line.
void moment_add(moment *now, timeline_entry entry);

// Whether an event was raised; and the values of a line, the last of its kind, null where there is
// none.
bool moment_has_event(const moment &now, uint32_t event);
const std::vector<std::string> *moment_line(const moment &now, log_line id);

// The number of an event's entry.
uint32_t event_number(const timeline_entry &entry);
