// Recordings: JSON lines of what a daemon took up and what came of it, as docs/recordings.md has
// them, read line by line. platform/host/recording_lines.h writes them.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/host/recording_lines.h"
#include "tools/base/whole_file.h"
#include "tools/recording/happening.h"
#include "tools/recording/record.h"

inline constexpr char recording_beginning[] = "{\"dvx_recording\"";  // of every recording

// A line: what the daemon took up, or what came out.
struct recording_line {
    size_t number = 0;  // in the file, from 1
    int64_t time_ns = 0;
    bool is_happening = false;
    happening taken;
    record came;
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
    int64_t first_ns = 0;                        // of the first line behind the header
    int64_t last_ns = 0;                         // of the last happening
    std::map<std::string, std::string> answers;  // of libraries, as they are by now
};

// Opens a file, "-" for standard input. One that cannot be read, or is no recording, has an error.
recording recording_open(const std::string &path);
recording recording_of(whole_file content);

// Reads a first line; empty, or what is wrong with it.
std::string recording_read_header(std::string_view line, recording_header *header);

// How far the wall clock is ahead of the recording's; 0: not known.
int64_t recording_wall_ahead_ns(const recording_header &header);

// Reads any other line by itself; false for what is none. What a call was answered is known from
// the lines before it alone.
bool recording_read_line(std::string_view line, recording_line *read);

// The next line. False at the end, or where the error says what is wrong. A last line that was cut
// off is left out and remarked.
bool recording_next(recording *file, recording_line *line);

// The same for lines that come one by one.
void recording_follow_answers(recording *file, recording_line *line);

// The lines of what is seen or played by somebody else than the daemon; `time_ns` is of the
// recording's clock. A record that has no line is empty.
std::string recording_line_of(const happening &taken);
std::string recording_line_of(const record &came, int64_t time_ns);
