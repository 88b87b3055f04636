// The lines of a frame file, in UTF-8, whatever it is encoded in and however it ends its lines.
//
// It is read in pieces and no line of more than 1 MiB is taken, so that a file of any size costs
// little memory. One thread.
#pragma once

#include <deque>
#include <string>
#include <vector>

enum class frame_encoding { utf8, utf16_little, utf16_big };

struct frame_source {
    int fd = -1;         // -1: all there is stands in `raw`
    bool ended = false;  // nothing more comes from `fd`
    bool begun = false;  // the encoding is known
    frame_encoding encoding = frame_encoding::utf8;
    std::string raw;   // read and not decoded yet
    std::string text;  // decoded; given away up to `at`
    size_t at = 0;
    std::deque<std::string> ahead;  // lines that were peeked at
    size_t line = 0;                // number of the line that was given last
    bool open_end = false;          // the last line of all has no end
    std::string error;              // empty, or why there are no more lines, with its line

    frame_source() = default;
    ~frame_source();
    frame_source(const frame_source &) = delete;
    frame_source &operator=(const frame_source &) = delete;
};

// Opens a file, "-" for standard input, or takes a text for one. What is wrong stands in `error`.
void frame_source_open(frame_source *source, const std::string &path);
void frame_source_take(frame_source *source, const std::string &content);

// What it begins with, for a look: up to the first 256 KiB or all of a smaller file.
std::string_view frame_source_start(frame_source *source);

// The next line without its end; false at the file's end or with an error.
bool frame_source_next(frame_source *source, std::string *line);

// Whether the line that was given last is the last of all and has no end: it may be cut off.
bool frame_source_is_cut(const frame_source &source);

// The next `count` lines, or fewer at the end, which `frame_source_next` gives again.
std::vector<std::string> frame_source_peek(frame_source *source, size_t count);

// All that has not been given away, where no line was; an error beyond `limit` bytes.
bool frame_source_rest(frame_source *source, size_t limit, std::string *text);
