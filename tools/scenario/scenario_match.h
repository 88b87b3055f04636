// What must follow a happening, held against what did.
#pragma once

#include <string>
#include <vector>

#include "tools/scenario/scenario.h"

// The words of the kinds, by their number, and the first of those kinds that look at the same
// records.
extern const char *const pattern_words[pattern_kinds];
pattern_kind pattern_stream(pattern_kind kind);

// Whether a pattern's text names an event as a record has it, "43 EV_MODE_GAME_DEFAULT": by its
// number, its name with or without EV_, or both; in small letters or capitals.
bool names_event(const std::string &wanted, const std::string &record);

// Empty when the records are as expected, else what is missing or too much. What the daemon was
// told is no record.
std::string check_expectation(const expectation &then, const std::vector<record> &records);
