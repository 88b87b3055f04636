// The search for tunables: sets that are drawn, raced on few seeds first and on more where they may
// win, and judged by what each game loses at most; the choice is then played on seeds that nobody
// searched on.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tools/lab/run.h"
#include "tools/lab/statistics.h"
#include "tools/simulated/settings.h"

// A figure that is varied, from `low` to `high` by `step`.
struct varied_figure {
    std::string name;
    int64_t low = 0;
    int64_t high = 0;
    int64_t step = 1;
};

// One play of one game with a set.
struct set_play {
    double lost = 0;  // frames per second
    double saved = 0;
    double changes = 0;  // of caps, a minute
};

// What a game came to in each place where it was played, place by place: seed by seed.
struct tried_game {
    std::string name;
    std::vector<std::vector<set_play>> plays;
};

// A set with what it was tried on. Games that were no longer worth a play have fewer.
struct tried_set {
    setting_list set;   // of the figures that are varied
    std::string error;  // empty, or why it could not be tried
    std::vector<tried_game> games;
    bool caps_left = false;  // after a game
};

// Where each set is played: the panels, governors, buffers and devices that were asked for.
struct search_place {
    std::string name;  // "59.92 Hz, fit, 3 buffers, default"
    environment on;
    simulated_figures figures;  // with the device's levels of caps
};

struct search_options {
    std::vector<std::string> vary;  // NAME=LO..HI[:STEP]
    double max_loss = 1;            // frames per second that no game may lose more than
    double max_changes = 0;         // of caps, a minute, in any game; 0: no bound
    bool all_games = false;         // those whose work the data cannot tell are judged too
    int samples = 200;
    uint64_t draw_seed = 1;
    std::string shard = "1/1";        // K/N
    std::string out;                  // the plays of sets; a file that is there is continued
    std::vector<std::string> inputs;  // files that are read, which `out` is not to be
    bool json = false;
};

// What a search is made under; a file has the plays of one such.
struct lab_search {
    lab_setup setup;
    std::vector<search_place> places;
    std::map<std::string, std::string> conditions;
    search_options options;
};

// How a set that was tried comes out.
struct set_verdict {
    const tried_set *tried = nullptr;
    size_t seeds = 0;        // that every game was played with
    bool holds = false;      // each game's bound and each play, and the bound on cap changes
    estimate saved;          // mean of games and places, a seed
    double lost = 0;         // mean likewise
    double worst_lost = 0;   // the highest one-sided bound of a game in a place
    double worst_mean = 0;   // the highest mean of one
    double worst_play = -1;  // the highest of a single play
    std::string worst_play_game;
    std::string worst_game;  // that of the highest bound
    std::string worst_place;
    double most_changes = 0;  // of a game's mean, a minute
    std::string broken_by;    // what breaks it, in words; empty where it holds
};

// What the choice came to on seeds that nobody searched on.
struct held_out {
    uint64_t first_seed = 0;
    size_t seeds = 0;
    size_t within = 0;  // seeds in which no game lost more than the bound
    std::string worst_game;
    double worst_lost = 0;  // the highest of a play
    estimate saved;
    estimate saved_default;  // by the daemon's own figures
    estimate gained;         // in pairs
    bool holds = false;
    std::string broken_by;  // what breaks it there; empty where it holds
};

struct search_result {
    size_t tried = 0;
    size_t plays = 0;                   // of them all
    set_verdict first;                  // the daemon's own figures, as they were searched on
    std::vector<set_verdict> front;     // by what they save
    const tried_set *best = nullptr;    // holds, on the held-out seeds too
    const tried_set *chosen = nullptr;  // what was played there last; null: nothing holds at all
    held_out verdict;
};

// Empty, or what is wrong with the text.
std::string varied_figure_read(const std::string &text, varied_figure *figure);

// dvxctl's commands.
int search_command(const lab_search &search);
int merge_command(const lab_search &search, const std::vector<std::string> &paths);

// Moves one figure at a time, from the daemon's own: what each of its values changes.
int vary_command(const lab_search &search);
