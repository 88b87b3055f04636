// What the reader of a format gathers: values by stream, and rows that had none. From there on all
// formats go one way: the stream is chosen, times become differences, the unit is found.
#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tools/frames/frame_file.h"

// Why a row is left out.
enum class frame_omission {
    no_number,
    not_positive,
    cut_off,
    flagged,
    no_time,
    free_slot,  // of a ring that is not full: no row at all, in the end
    backwards,
    too_long,
};
constexpr size_t frame_omissions = 8;

struct frame_tally {
    struct {
        size_t count = 0;
        size_t line = 0;     // of the first; 0: not known
        std::string sample;  // its text, cut
    } by[frame_omissions];
};

// What one swap chain, layer or process presented.
struct frame_stream {
    std::vector<std::string> names;  // the application's first
    std::vector<long double> values;
    std::vector<size_t> blocks;  // indices of values that have nothing to do with the one before
    frame_tally left_out;
};

struct frame_gathered {
    std::string format;
    std::string column;  // as the file spells it
    std::string unit;    // empty: not fixed by the format
    std::string error;
    bool times = false;            // the values are times
    bool ordered = false;          // no: times are put in order first
    bool needs_name = false;       // a stream without an application's name is the second choice
    double span_s = 0;             // what the rows' own clock says that they span; 0: it has none
    const char *stream_word = "";  // what else names a stream: "swap chain"
    std::deque<frame_stream> streams;
    std::unordered_map<std::string, size_t> numbers;  // of streams, by their names
    frame_tally left_out;                             // of rows that belong to no stream
    std::vector<std::string> remarks;
};

// The stream of these names, which is made where there is none.
frame_stream *frame_gathered_stream(frame_gathered *all, const std::vector<std::string> &names);

// Counts a row that has no value.
void frame_tally_add(frame_tally *tally, frame_omission why, size_t line,
                     std::string_view sample = {});

// All of a text as a number, with a point or a comma before its fraction; no "inf", no "nan".
bool frame_parse_number(std::string_view text, long double *value);

// A text that stands in one line of what we say, whatever a cell held.
std::string frame_printable(std::string_view text);

// A text without the blanks around it.
std::string_view frame_trimmed(std::string_view text);

// The intervals of what was gathered, or what is wrong with it.
frame_file frame_gathered_finish(frame_gathered *all, const frame_options &options);
