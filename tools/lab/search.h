// The search for tunables: sets that are drawn, what each comes to over all games, and the front
// between energy saved and frames lost.
#pragma once

#include <string>
#include <vector>

#include "tools/lab/run.h"
#include "tools/simulated/settings.h"

// A figure that is varied, from `low` to `high` by `step`.
struct varied_figure {
    std::string name;
    int64_t low = 0;
    int64_t high = 0;
    int64_t step = 1;
};

// What a game came to with a set, and a set with all games.
struct tried_game {
    std::string name;
    double lost = 0;  // frames per second
    double saved = 0;
};

struct tried_set {
    setting_list set;   // of the figures that are varied
    std::string error;  // empty, or why it could not be tried
    std::vector<tried_game> games;
    double minutes = 0;
    double energy_saved = 0;  // means over the games
    double fps_lost = 0;
    double worst_lost = 0;
    std::string worst_game;
    bool caps_left = false;  // after a game
};

struct search_options {
    std::vector<std::string> vary;  // NAME=LO..HI[:STEP]
    double max_loss = 1;            // frames per second that no game may lose more than
    int samples = 200;
    std::string shard = "1/1";  // K/N
    std::string out;            // the sets that have been tried; one that is there is continued
    std::vector<std::string> inputs;  // files that are read, which `out` is not to be
    bool json = false;
};

// Empty, or what is wrong with the text.
std::string varied_figure_read(const std::string &text, varied_figure *figure);

// dvxctl's commands.
int search_command(const lab_setup &setup, const search_options &options);
int merge_command(const std::vector<std::string> &paths, double max_loss, bool json);
