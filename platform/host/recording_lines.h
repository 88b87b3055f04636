// The lines of a recording, as docs/recordings.md has them, without their ends: one writer for all
// who record, the daemon of a host, `dvxctl record` and the lab. Any thread may call.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include "client/dvx_client.h"
#include "platform/recording.h"

constexpr int recording_version = 1;

// The thread that takes a kind of happening, and the kind's word in a recording.
struct recorded_kind_words {
    const char *thread;
    const char *word;
};
extern const recorded_kind_words recorded_words[recorded_kinds];

struct recording_header {
    std::string daemon;    // its version; empty: not known
    std::string device;    // what the maker calls it; empty: not known
    std::string root;      // of a virtual device
    bool taken = false;    // the daemon itself noted what it took, in that order
    int64_t time_ns = 0;   // a moment of the recording's clock
    int64_t wall_ns = 0;   // the same of the wall clock; 0: not known
    int64_t since_ns = 0;  // when whoever recorded asked for it; 0: from the start
    std::map<std::string, std::string> settings;  // tunables and levels, by the names of --set
    // Of a device that exists in a simulator alone: its properties, what its libraries answer.
    std::map<std::string, std::string> properties;
    std::map<std::string, std::string> answers;
};

// The first line. Settings are numbers.
std::string recording_header_line(const recording_header &header);

// What was taken: `taken` is a message or a node's report, null for the other kinds; `given` is
// what the platform answered, as elements of an array.
std::string recording_happening_line(int64_t time_ns, recorded_kind kind, const void *taken,
                                     const std::string &given = {});

// What came out, under its key; `more` is of fields that stand behind it, each with its comma.
std::string recording_output_line(int64_t time_ns, const char *thread, const char *key,
                                  const std::string &text, const std::string &more = {});

// A number's field, with a comma before it.
std::string recording_number(const char *key, int64_t number);

// Whether a message's payload is a text of three letters or more with nothing behind it.
bool recording_message_is_text(const dvx_message &message);
