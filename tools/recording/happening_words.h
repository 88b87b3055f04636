// Happenings in the words of docs/scenarios.md, as people write them and as dvxctl notes what it
// sent.
#pragma once

#include <string>
#include <vector>

#include "tools/recording/happening.h"

// A word of a line, or a text in quotes.
struct happening_word {
    std::string text;
    bool quoted;
};

// Splits at blanks; a text in double quotes is one word. False when a quote is not closed.
bool split_words(const std::string &text, std::vector<happening_word> *words);

// Whether a library's call has that name.
bool names_call(const std::string &name);

// Reads a happening. Empty, or what is wrong with it.
std::string read_happening(const std::string &text, happening *given);
