// Words of the command line: what a mistyped one may have meant, how many, how fast time is to be.
#pragma once

#include <stddef.h>

#include <string>
#include <vector>

// The word that is nearest to what was typed, by letters left out, added, exchanged or swapped with
// their neighbour; empty where none is near.
std::string nearest_word(const std::string &typed, const std::vector<std::string> &words);

// A text without the blanks around it.
std::string trimmed_text(const std::string &text);

// "1 row", "2 rows".
std::string counted(size_t count, const char *thing);

// A number with no more digits than it needs, nine at most.
std::string short_number(double value);

// A speed is "real", a factor from 0.001 to 1000, or the word for the time that is not real ("max",
// "virtual"). Empty, or what is wrong with the text.
std::string check_speed(const std::string &text, const std::string &unreal);

// The factor of a speed that has been checked; 0 where time is not real.
double parse_speed(const std::string &text, const std::string &unreal);
