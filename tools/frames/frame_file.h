// Frame files as people have them: whatever program recorded them, one reader makes intervals of
// them. docs/frames.md lists the formats, the columns and how a unit is found.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

// What the user knows better than the file.
struct frame_options {
    std::string column = {};  // a column's name, or its number from 1; empty: the format's own
    std::string unit = {};    // us, ms, ns or s; empty: the format's, or the one that is plausible
    std::string app = {};     // whose frames; empty: of whom there are most
    bool difference = false;  // the column holds times
};

struct frame_file {
    std::string format;
    std::string column;  // as the file spells it; empty: it names none
    std::string unit;    // of the column: us, ms, ns or s
    std::string error;   // empty, or what is wrong, with its line; then there are no intervals
    std::string app;     // whose frames these are, where the file says
    std::vector<double> intervals_us;  // above 0, at most 2^31 - 1
    size_t left_out = 0;               // rows that have no value
    std::string left_out_why;          // in words, with the first line of each kind
    std::vector<std::string> remarks;  // what the user should know, a sentence each
    bool sampled = false;              // rows are samples: not every frame has one
    double span_s = 0;                 // what the file's own clock says; 0: it has none
};

// Reads a file, "-" for standard input. Errors do not name the file.
frame_file frame_file_read(const std::string &path, const frame_options &options);

// The same from a text.
frame_file frame_file_read_text(const std::string &content, const frame_options &options);
