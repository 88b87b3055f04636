// The lab's results as lines of JSON, with the fields of docs/lab.md, and read again.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/lab/run.h"
#include "tools/lab/search.h"

// What a game came to.
std::string game_result_line(const game_result &result);

// A set that was tried, or why it could not be.
std::string tried_set_line(const tried_set &tried);

// Reads a line of a set that was tried. False where it is none.
bool tried_set_read(std::string_view line, tried_set *tried);

// What a search came to; `best` is null where there is none.
std::string search_line(size_t tried, const std::vector<tried_set> &front, const tried_set *best);
