// Tables: a header somewhere in the first lines, then a row a frame. Which program wrote one shows
// by its columns.
#pragma once

#include <string>
#include <vector>

#include "tools/frames/frame_source.h"
#include "tools/frames/frame_values.h"

constexpr size_t frame_header_lines = 50;  // in which a header is looked for
constexpr size_t frame_no_column = static_cast<size_t>(-1);

// What is known of a table before its rows are read.
struct frame_table {
    std::string error;
    std::string format;
    char delimiter = ',';
    size_t skipped = 0;               // lines before the header, or before the first row
    std::vector<std::string> header;  // empty: the table has none
    size_t column = frame_no_column;
    std::string unit;                  // empty: to be found
    bool times = false;                // the column holds times
    bool ordered = true;               // rows stand in the order of time
    bool tagged = false;               // the first cell says what a row is, as Afterburner has it
    bool unit_by_rate = false;         // frames per second beside it tell the unit
    std::vector<size_t> stream_cells;  // application, process, swap chain: in this order
};

// Finds the header and the column that are wanted.
frame_table frame_table_find(const std::vector<std::string> &head, const frame_options &options);

// Reads the rows of a table.
void frame_table_read(frame_source *source, const frame_table &table, frame_gathered *all);

// A column's name as names are compared: small letters, nothing between the words.
std::string frame_plain_name(std::string_view name);

// The unit that a column's name ends or begins with, "" where it says none; `*base` becomes its
// plain name without the unit.
std::string frame_unit_of_name(std::string_view name, std::string *base);
