// A record: one thing that came out of a daemon, or that was done to its device, with its fields.
// A text becomes one here, once; whoever works with records reads the fields.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/recording/log_lines.h"

enum class record_kind {
    message,   // that was sent to the daemon
    event,     // that the daemon raised
    log,       // a line of its log
    call,      // of a hardware library
    service,   // a message to another service
    property,  // that was set
    end,       // of the daemon
    note,      // of this program: what it has to say of the device
};

struct record {
    record_kind kind = record_kind::log;
    int64_t time_ns = 0;      // of the wall clock, or since the source's first
    int32_t thread = 0;       // its id; 0: not the daemon's, or known by its name alone
    std::string thread_name;  // where it is known without the device
    std::string text;         // all of it, as people read it
    int32_t priority = 0;     // of a line, as android/log.h has it; 0: not known
    uint32_t event = 0;
    const log_row *row = nullptr;     // of a line; null: one that the table does not have
    std::string name;                 // of a call, a property, the service
    std::vector<std::string> values;  // of a line, in its order; of a call, its arguments; of a
                                      // property, its value; of a message, its subject and what
                                      // is said of that
    std::optional<int32_t> answer;    // of a call, where it is known; below 0: refused
};

// The word that a kind stands under: "message", "event", "log", "hw", "service", "prop", "end";
// "--".
const char *record_word(record_kind kind);

// The event or line that a text of the log is; without text where it only says how an event
// travels.
record make_log_record(int64_t time_ns, const std::string &text);

// An event by its number.
record make_event_record(int64_t time_ns, uint32_t event);

// A call, "NAME ARGUMENT...".
record make_call_record(int64_t time_ns, const std::string &text);

// A message to a service, "merlak service  10 game", and a property, "NAME VALUE".
record make_service_record(int64_t time_ns, const std::string &text);
record make_property_record(int64_t time_ns, const std::string &text);

// The name of a record's thread, or its number.
std::string record_thread(const record &of);

// Whether it is that line of the log.
bool record_is_line(const record &of, log_line line);

// Whether it is a call of that name.
bool record_is_call(const record &of, const char *name);

// Whether it is a call that the hardware refused, as far as is known.
bool record_is_refused(const record &of);

// A value as a number, 0 where there is none; values are counted from 0.
double record_number(const record &of, size_t index);
int32_t record_integer(const record &of, size_t index);
