// The lines of a recording, as who records writes them; without their ends.
#pragma once

#include <string>

#include "simulator/simulator.h"
#include "tools/recording/timeline.h"

// What was taken: a happening without more to it ("timers"), a node's report, an interval, a
// message. `time_ns` is of the recording's clock.
std::string recording_plain_line(int64_t time_ns, recorded_kind kind);
std::string recording_report_line(int64_t time_ns, recorded_kind kind, const std::string &report);
std::string recording_message_line(int64_t time_ns, const dvx_message &message, bool is_text);

// What came out, on its thread by its name or else its number; empty for what has no line.
std::string recording_entry_line(const timeline_entry &entry, int64_t time_ns);
