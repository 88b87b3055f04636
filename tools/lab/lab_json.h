// What the lab writes as JSON, and reads again.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tools/lab/fit.h"
#include "tools/lab/race.h"
#include "tools/lab/summary.h"

// A game's result, on one line; with `before`, what other figures changed.
std::string game_result_line(const game_result &result, const game_result *before,
                             uint64_t first_seed, const std::string &place);

// Plays of one game with a set, from the `first` seed of the search on.
struct played_game {
    std::string name;
    size_t place = 0;
    size_t first = 0;
    std::vector<set_play> plays;
};

// A line of a search's file: plays of a set, with all that they were made under.
struct tried_plays {
    std::map<std::string, std::string> conditions;
    setting_list set;
    std::string error;
    bool caps_left = false;
    std::vector<played_game> games;
};
std::string tried_plays_line(const tried_plays &plays);

// Reads one; false where it is none.
bool tried_plays_read(std::string_view line, tried_plays *plays);

// What a search came to; `best` is null where nothing holds.
std::string search_line(const search_result &found);

// What one figure changes.
std::string set_change_line(const set_change &change);

// A game that was fitted, on one line; docs/lab.md has its fields.
std::string fit_line(const fitted_game &fitted, const device_model &device);
