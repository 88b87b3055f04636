// The file of a search: plays of sets, a line each, with all that they were made under.
#pragma once

#include <string>
#include <vector>

#include "tools/lab/lab_json.h"
#include "tools/lab/search.h"

// What a file holds of a search.
struct tried_file {
    std::vector<tried_set> sets;
    size_t whole_bytes = 0;  // of the lines that are ended
};

// Reads lines of plays. Where the file is to be gone on with, a last line without an end is played
// again. Empty, or what is wrong.
std::string search_file_read(const std::string &path, const lab_search &search, bool goes_on,
                             tried_file *tried);

// The plays of a set beyond those that were known before.
tried_plays plays_since(const lab_search &search, const tried_set &tried, const tried_set &before);
