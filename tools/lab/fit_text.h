// A fitted game in words, as a row of the games' table, and as JSON.
#pragma once

#include <string>

#include "tools/lab/fit.h"

// For people: the figures, how sure they are, and what could not be told.
void print_fit(const fitted_game &fitted, const held_frames &held, const device_model &device);

// A table of games with this one in it.
std::string fit_table(const fitted_game &fitted);

std::string fit_line(const fitted_game &fitted, const device_model &device);
