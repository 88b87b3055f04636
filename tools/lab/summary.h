// What a game's plays say of it, each figure with what it rests on.
#pragma once

#include <string>
#include <vector>

#include "tools/lab/run.h"
#include "tools/lab/statistics.h"

// Plays that ended in one way: the analyser held the game to this frame rate most of the time.
struct play_outcome {
    int learned_fps = 0;
    size_t plays = 0;
    double fps_lost = 0;  // means over these plays
    double energy_saved = 0;
};

struct game_summary {
    std::string game;
    bool told = true;
    size_t seeds = 0;
    run_result free;  // means over the plays
    run_result capped;
    double free_mw = 0;
    double capped_mw = 0;
    double changes_a_minute = 0;
    double reversals_a_minute = 0;
    estimate lost;  // frames per second
    double lost_worst = 0;
    uint64_t worst_seed = 0;
    estimate saved;                      // share of the energy
    std::vector<play_outcome> outcomes;  // the most frequent first
    bool caps_left = false;
};

// `first_seed` is that of the first play.
game_summary summarise_game(const game_result &result, uint64_t first_seed);

// The mean of all games, seed by seed; its worst is the worst of a game, which `game` names.
game_summary summarise_games(const std::vector<game_result> &results, uint64_t first_seed);

// Whether a figure may as well be nothing: its interval holds 0, or all of it is too small to show.
bool may_be_nothing(const estimate &figure);

// What other figures change, in pairs of the same work.
struct game_change {
    estimate lost;
    estimate saved;
};
game_change compare_game(const game_result &before, const game_result &after);
game_change compare_games(const std::vector<game_result> &before,
                          const std::vector<game_result> &after);
