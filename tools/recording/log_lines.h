// The lines that the daemon can log: one table that says of each what it means, which text of a log
// is which line, and what it says of the daemon's decisions. scripts/rules holds the table against
// the sources; docs/log.md is made from it.
//
// Constant data, but for an index that the first match builds. Any thread may call.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/recording/ids.h"

// What a line is about, in the order of the daemon's life.
enum class log_subject {
    start,
    library,
    event,
    client,
    monitor,
    app,
    policy,
    rate,
    image,
    thermal,
    mitigation,
    low_power,
    automode,
    profile,
    timer,
    service,
    analyser,
    measuring,
    scene,
    active,
    caps,
};

// When a line is written: always, as an error or as information, or while its debug group is open
// (core/debug_gate.h), as information.
enum class log_priority {
    error,
    info,
    debug_events,
    debug_powerhal,
    debug_features,
};

struct log_row {
    log_line id;
    log_subject subject;
    log_priority priority;
    bool failure;          // something is wrong, or cannot be had
    const char *pattern;   // as the daemon formats it, without a newline at its end
    const char *meaning;   // for a reader of docs/log.md
    const char *sentence;  // as log_line_sentence takes it; null: book-keeping
};

struct log_match {
    const log_row *row = nullptr;     // null: no such line
    std::vector<std::string> values;  // what stands for each conversion of the pattern
};

// The row of a line.
const log_row &log_row_of(log_line id);

// The line that a text is, without the log's prefix and with or without newlines at its end. Of
// several patterns that fit, the one with the longest text of its own counts.
log_match log_line_match(const std::string &text);

// What a line says of the daemon's decisions, in words; empty for book-keeping.
// In a row's sentence {N} stands for the value N, counted from 1, or "(empty)", and {N|a|b|c} for
// words chosen by it: a for 0, b for 1, the last for every other value.
std::string log_line_sentence(const log_row &row, const std::vector<std::string> &values);

// The text of a line that has one number, without a newline at its end.
std::string log_line_text(log_line id, uint32_t number);

// Headings of docs/log.md: what a subject is called, and how a priority is written there.
const char *log_subject_title(log_subject subject);
const char *log_priority_words(log_priority priority);
