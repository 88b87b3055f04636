// A game in closed loop: the model plays it, the simulated daemon takes its intervals, and the caps
// act on the next frame. Beside each such run there is one of the same frames without caps.
#pragma once

#include <string>
#include <vector>

#include "tools/lab/model.h"

struct lab_setup {
    std::vector<game_work> games;
    double minutes = 10;  // of the runs without caps; those with caps play the same frames
    uint64_t seed = 1;    // of the first play
    int seeds = 8;        // plays a game, seed after seed
    environment on;
    variation varies;
    simulated_figures figures;
    std::string record;  // directory for the recordings of each game's first play; empty: none
    int jobs = 1;        // processes at once
};

// What a run without caps or with them came to.
struct run_result {
    double fps = 0;
    double low_fps = 0;  // of the slowest 1 % of frames, by their mean interval
    double missed = 0;   // share of frames later than 1.5 x the median interval without caps
    double energy_mj = 0;
    double seconds = 0;
    double cut[resource_count] = {};  // mean share that a cap is below full
    int changes = 0;                  // of caps
    int reversals = 0;                // changes of a cap against the one before
    double settle_s = 0;  // until the caps first stand where they stand most of the time
    double frames = 0;
    double median_us = 0;    // of its intervals
    double warmest_c = 0;    // of the chip
    int learned_fps = 0;     // that the analyser held the game to most of the time; 0: none
    bool caps_left = false;  // a cap was below full after the game
};

// A game played with one seed.
struct play_result {
    run_result free;
    run_result capped;
};

struct game_result {
    std::string game;
    bool told = true;
    std::vector<play_result> plays;  // a seed, in their order
    std::string error;               // empty, or how the simulated daemon ended
    std::string unwritten;           // empty, or why its recording could not be written
};

// The runs of each game without caps, a seed: what those with caps are held against. They hold for
// every set of figures.
std::vector<std::vector<run_result>> lab_run_free(const lab_setup &setup);

// Runs the games with caps, each play in a process of its own, beside those runs.
std::vector<game_result> lab_run(const lab_setup &setup,
                                 const std::vector<std::vector<run_result>> &free);

// Frames per second that caps cost.
double lab_fps_lost(const play_result &play);

// Energy that caps save, as a share of that without them.
double lab_energy_saved(const play_result &play);

// The same of each play.
std::vector<double> lab_each(const game_result &result, double (*of)(const play_result &play));
