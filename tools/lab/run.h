// A game in closed loop: the model plays it, the simulated daemon takes its intervals, and the caps
// act on the next frame.
#pragma once

#include <string>
#include <vector>

#include "tools/lab/model.h"

struct lab_setup {
    std::vector<game_work> games;
    double minutes = 10;
    uint64_t seed = 1;
    double panel_hz = 59.92;
    governor picks = governor::eager;
    variation varies;
    simulated_figures figures;
    std::string record;  // directory for a recording a game; empty: none
    int jobs = 1;        // processes at once
};

// What a run without caps or with them came to.
struct run_result {
    double fps = 0;
    double low_fps = 0;  // of the slowest 1 % of frames, by their mean interval
    double missed = 0;   // share of frames later than 1.5 x the median interval without caps
    double energy_mj = 0;
    double cut[resource_count] = {};  // mean share that a cap is below full
    int changes = 0;                  // of caps
    int reversals = 0;                // changes of a cap against the one before
    double settle_s = 0;  // until the caps first stand where they stand most of the time
};

struct game_result {
    std::string game;
    run_result free;
    run_result capped;
    double minutes = 0;
    bool caps_left = false;  // a cap was below full after the game
    std::string error;       // empty, or how the simulated daemon ended
    std::string unwritten;   // empty, or why its recording could not be written
};

// Runs the games, each in a process of its own.
std::vector<game_result> lab_run(const lab_setup &setup);

// Frames per second that caps cost.
double lab_fps_lost(const game_result &result);

// Energy that caps save, as a share of that without them.
double lab_energy_saved(const game_result &result);
