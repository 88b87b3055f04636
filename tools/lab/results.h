// The table of what games came to.
#pragma once

#include <vector>

#include "tools/lab/run.h"

// Prints it, with fewer columns on a terminal that has no room for all.
void print_results(const std::vector<game_result> &results);
