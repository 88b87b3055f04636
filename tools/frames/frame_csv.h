// Rows of cells from lines of text, by libcsv: quotes, doubled quotes, cells of several lines and
// blanks around cells are its business.
#pragma once

#include <csv.h>

#include <string>
#include <string_view>
#include <vector>

struct frame_csv {
    csv_parser parser;
    std::vector<std::string> cells;  // of the row, the first `count`; memory is kept for the next
    size_t count = 0;
    bool whole = false;        // the row is complete
    size_t pending_bytes = 0;  // fed since the row began

    explicit frame_csv(char delimiter);
    ~frame_csv();
    frame_csv(const frame_csv &) = delete;
    frame_csv &operator=(const frame_csv &) = delete;
};

// Takes a line without its end. True when a row is complete: its cells are there until the next
// line. A line may end within a quoted cell; then the row goes on.
bool frame_csv_feed(frame_csv *csv, std::string_view line);

// The cells of a line that stands alone.
std::vector<std::string> frame_csv_split(std::string_view line, char delimiter);
