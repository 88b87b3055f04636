// A fitted game in words, and as a row of the games' table.
#pragma once

#include <string>

#include "tools/lab/fit.h"

// The columns of the figures, by their index.
extern const char *const fitted_names[fitted_count];

// For people: the figures, how sure they are, and what could not be told.
void print_fit(const fitted_game &fitted, const held_frames &held, const device_model &device);

// A table of games with this one in it.
std::string fit_table(const fitted_game &fitted);
