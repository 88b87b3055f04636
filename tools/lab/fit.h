// A game's work from frames that were played under known caps: what of it they tell, and how
// surely.
#pragma once

#include <string>
#include <vector>

#include "tools/lab/held_frames.h"
#include "tools/lab/model.h"

// A figure that was fitted. In 95 of 100 cases the true one lies from `low` to `high`, where the
// game's work varies as the lab's does.
struct fitted_figure {
    double value = 0;
    double low = 0;
    double high = 0;
};

enum fitted_index {
    fitted_cpu_fixed,
    fitted_cpu_megacycles,
    fitted_gpu_fixed,
    fitted_gpu_megacycles,
    fitted_count
};

// What frames under one pair of caps came to, as recorded and as the fitted game plays them.
struct fitted_rate {
    held_caps caps;
    size_t frames = 0;
    double fps = 0;
    double fitted_fps = 0;
};

struct fitted_game {
    game_work game;
    fitted_figure figures[fitted_count];
    // A frame's time at full clocks, and at the lowest that were held, ms.
    fitted_figure cpu_ms[2];
    fitted_figure gpu_ms[2];
    fitted_figure both_ms[2];  // their sum
    double other_shape = 0;  // how much worse the other shape fits: by so much more of chi-squared
    double panel_hz = 0;
    std::vector<fitted_rate> rates;
    std::string error;  // empty, or why nothing can be told
};

// Fits by simulated moments: the fitted game is played under the caps of the recordings, frame by
// frame, and the mean interval and the share of late frames under each pair of caps are brought
// together by least squares. Frames of fewer than two pairs of caps tell nothing.
fitted_game fit_game(const held_frames &held, const environment &on, const variation &varies);
