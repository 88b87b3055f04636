// What a search says to people.
#pragma once

#include <string>

#include "tools/lab/race.h"

// "NAME=VALUE NAME=VALUE".
std::string set_text(const setting_list &set);

// Prints a search's front, its choice, and what that came to on other seeds.
void print_search(const lab_search &search, const search_result &found);

// Prints what figures change that were moved alone, over so many seeds.
void print_changes(const std::vector<set_change> &changes, int seeds);
