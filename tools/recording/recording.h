// Recordings: JSON lines of what a daemon took up and what came of it, as docs/recordings.md has
// them, read line by line.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "simulator/simulator.h"
#include "tools/base/whole_file.h"
#include "tools/recording/timeline.h"

constexpr int recording_version = 1;
inline constexpr char recording_beginning[] = "{\"dvx_recording\"";  // of every recording

struct recording_header {
    std::string daemon;    // its version; empty: not known
    std::string device;    // what the maker calls it; empty: not known
    std::string root;      // of a virtual device
    bool taken = false;    // the daemon itself noted what it took, in that order
    int64_t wall_ns = 0;   // how far the wall clock is ahead of the recording's; 0: not known
    int64_t since_ns = 0;  // when whoever recorded asked for it; 0: from the start
    std::map<std::string, std::string> settings;  // tunables and levels, by the names of --set
    // Of a device that exists in a simulator alone: its properties, what its libraries answer.
    std::map<std::string, std::string> properties;
    std::map<std::string, std::string> answers;
};

enum recording_line_kind {
    recording_happening,  // what the daemon took up
    recording_interval,   // the same, an interval in whose happening nothing was asked
    recording_output,     // what came out
};

struct recording_line {
    recording_line_kind kind = recording_happening;
    size_t number = 0;  // in the file, from 1
    int64_t time_ns = 0;
    recorded_happening what;
    bool is_text = false;  // of a message
    int32_t interval_us = 0;
    timeline_entry came;
    bool aside = false;  // it belongs to no happening
};

// An open recording. What the caller looks at: the header, `error` once nothing more comes, and
// remarks for whoever reads.
struct recording {
    recording_header header;
    std::string error;  // empty, or what is wrong, with its line
    std::vector<std::string> remarks;

    whole_file content;
    size_t at = 0;
    size_t line = 0;
    bool begun = false;
    int64_t first_ns = 0;  // of the first line behind the header
    int64_t last_ns = 0;   // of the last happening
};

// Opens a file, "-" for standard input. One that cannot be read, or is no recording, has an error.
recording recording_open(const std::string &path);
recording recording_of(whole_file content);

// Reads a first line; empty, or what is wrong with it. And any other; false for what is none.
std::string recording_read_header(std::string_view line, recording_header *header);
bool recording_read_line(std::string_view line, recording_line *read);

// The next line. False at the end, or where the error says what is wrong. A last line that was cut
// off is left out and remarked.
bool recording_next(recording *file, recording_line *line);
