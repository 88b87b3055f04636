// The table of games, as a file has it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/lab/model.h"

struct game_list {
    std::vector<game_work> games;
    std::string error;  // empty, or what is wrong, with its line
};

// Reads games as a table with the columns of tools/lab/games.csv, by their names; `limit_fps` may
// be one of them.
game_list games_read(const std::string &path);
game_list games_read_text(std::string_view text);

// The games that belong to this program.
std::string games_path();
