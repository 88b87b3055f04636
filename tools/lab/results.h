// The tables of what games came to.
#pragma once

#include <vector>

#include "tools/lab/summary.h"

// Prints one, with fewer columns on a terminal that has no room for all. `with_base`: the power of
// the rest of the device is in it.
void print_results(const std::vector<game_result> &results, uint64_t first_seed, bool with_base);

// Prints what other figures change.
void print_comparison(const std::vector<game_result> &before,
                      const std::vector<game_result> &after);
