// Lines of a log as logcat's threadtime writes them, with year, zone, usec or nsec where somebody
// asked for those; the virtual device's log is one.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/recording/record.h"

struct logcat_line {
    int64_t time_ns = 0;  // of the wall clock
    bool has_year = false;
    int process = 0;
    int thread = 0;
    int priority = 0;  // as android/log.h has it; 0: not known
    std::string tag;
    std::string text;
};

// Reads a line, with or without a carriage return at its end. A line without a year is of the year
// of `now_ns`, of the wall clock, without a zone of this host's. A fraction of three digits is
// taken for its last microsecond, as what a client did within it comes before what followed. False
// for anything else.
bool logcat_read(const std::string &line, int64_t now_ns, logcat_line *read);

// Where the time of a log's lines stands: the wall clock of a phone is set while it runs.
struct logcat_clock {
    bool begun = false;
    int64_t last_ns = 0;
    int64_t shift_ns = 0;  // what is added to the lines' own times
};

// A log that is read line by line.
struct logcat_log {
    logcat_clock clock;
    size_t lines = 0;
    size_t of_daemon = 0;
    std::vector<std::string> remarks;  // for whoever reads it
};

// Takes the next line. True for one of the daemon's, whose time is brought to where time goes on:
// it never runs back, and a change of the clock takes no time and is remarked. `now_ns` as of
// logcat_read.
bool logcat_take(logcat_log *log, const std::string &line, int64_t now_ns, logcat_line *read);

// Reads a whole log; each line of the daemon's goes to `take` as a record, without text where it
// only says how an event travels.
void logcat_read_text(logcat_log *log, std::string_view text,
                      const std::function<void(record line)> &take);

// The record in a line.
record logcat_record(const logcat_line &line);

// Whether the daemon writes under this tag.
bool logcat_is_daemon(const logcat_line &line);
