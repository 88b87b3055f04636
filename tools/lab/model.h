// The lab's model of a game on a device: work a frame, how it varies, governors that pick
// frequencies below the caps, the panel, and power. What comes out is a model's result; docs/lab.md
// says what it rests on and what it cannot tell.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/simulator.h"

// A game's work: the time of a frame on a CPU at c MHz is cpu_fixed_ms + 1000 x cpu_megacycles / c,
// on a GPU likewise; the frame takes the longer of both, or their sum where one waits for the
// other.
struct game_work {
    std::string name;
    bool serial = false;
    double cpu_fixed_ms = 0;
    double cpu_megacycles = 0;
    double gpu_fixed_ms = 0;
    double gpu_megacycles = 0;
};

// How a frame's work varies around the game's; shares of it.
struct variation {
    double noise = 0.03;          // standard deviation from frame to frame
    double drift = 0.03;          // amplitude of a slow wave
    double drift_s = 40;          // its period
    double heavy = 0.002;         // share of frames that are heavy
    double heavy_factor = 1.8;    // their work
    double scene = 0.03;          // standard deviation from scene to scene
    double scene_s = 45;          // a scene's length
    double display_us = 40;       // standard deviation of when a frame is seen
    int buffers = 3;              // that frames are drawn into and seen from, 2 or 3
    std::vector<double> factors;  // of frames, in turn, instead of how their work varies
};

enum class governor {
    fit,    // the lowest level that holds the frame with a quarter of headroom
    eager,  // the lowest level at which half of the time is rest
    max,    // always the cap
};

// The resources that caps are for, as indices of what is kept for each.
enum resource_index { resource_big, resource_little, resource_gpu, resource_count };

// The levels of a device's resources, in MHz, the highest first.
struct device_levels {
    std::vector<double> mhz[resource_count];
};
device_levels levels_of(const simulated_figures &figures);

// A resource's name in the daemon's calls ("TMK_GPU"), or -1.
int resource_of(const std::string &name);
extern const char *const resource_names[resource_count];

// A game while it is played.
struct play_state {
    std::mt19937_64 random;
    double time_us = 0;    // when the frame was ready that was begun last
    double period_us = 0;  // of the panel
    int64_t shown = 0;     // periods at whose end the last frame was seen, and the one before
    int64_t shown_before = 0;
    double late_us = 0;  // how much later than that the last frame was seen
    double drift_phase = 0;
    double scene_factor = 1;
    double scene_end_us = 0;
    double expected = 1;  // factor of work that the governor expects
    size_t frame = 0;
    double energy_mj = 0;
};
play_state play_begin(uint64_t seed, double panel_hz);

// Plays one frame with levels no higher than the caps; the interval since the last one, in
// microseconds, as the display has it.
double play_frame(play_state *state, const game_work &game, const variation &varies, governor picks,
                  const device_levels &levels, const size_t caps[resource_count]);
