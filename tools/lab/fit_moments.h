// What a fit compares: moments of the frames that were recorded with those of a game that is played
// under the same caps, frame by frame.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "tools/lab/fit.h"

// The figures' roots: fitted as such, none falls below 0.
using figure_roots = std::array<double, fitted_count>;

// Under a pair of caps: the mean interval in periods, the share of late frames, and where it was
// measured the power in W, above the mean under all of them, as nobody knows what the rest of a
// phone draws.
enum class moment_kind { interval, late, power };
struct moment_place {
    moment_kind kind;
    size_t caps;
};
using moment_list = std::vector<double>;

struct fit_problem {
    const held_frames *held = nullptr;
    const variation *varies = nullptr;
    environment on;
    game_work like;               // name, shape, limit
    std::vector<size_t> counted;  // indices of caps with frames enough
    std::vector<size_t> frames;   // of all caps
    double period_us = 0;
    double mean_watts = 0;  // as recorded
    std::vector<moment_place> places;
    moment_list observed;
    // The Cholesky factor of how moments go up and down together from play to play, row by row,
    // with what no model has right.
    std::vector<double> factor;
    size_t plays = 1;  // that a trial is the mean of
};

// Takes the moments of what was recorded. Empty, or why they tell nothing.
std::string fit_observe(fit_problem *problem);

// The game that has these figures.
game_work fit_game_of(const fit_problem &problem, const figure_roots &at);

// The moments of a game with these figures: the mean of some plays.
moment_list fit_simulated(const fit_problem &problem, const figure_roots &at);

// Those of single plays with other seeds, which tell how far one play lies from the next; each
// batch has seeds of its own.
std::vector<moment_list> fit_trials(const fit_problem &problem, const figure_roots &at,
                                    uint64_t batch);

// Takes how moments lie together from such plays.
void fit_take_trials(fit_problem *problem, const std::vector<moment_list> &trials);

// Moments that are off by so much as independent figures of deviation 1.
moment_list fit_whitened(const fit_problem &problem, moment_list off);
