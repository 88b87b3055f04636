// The lab's model of a game on a device: work a frame, how it varies, governors that pick clocks
// below the caps, the panel, power and heat. What comes out is a model's result; docs/lab.md says
// what it rests on and what it cannot tell.
//
// A frame's work is a function of seed, game and frame number alone: two plays of a game with other
// caps differ by what the caps do, and by nothing else.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/lab/device_model.h"
#include "tools/lab/random_stream.h"

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
    double limit_fps = 0;  // the game's own limiter; 0: none
    bool told = true;      // false: it held the panel's rate wherever it was measured
};

// How a frame's work varies around the game's; shares of it.
struct variation {
    double noise = 0.03;           // standard deviation from frame to frame
    double drift = 0.03;           // amplitude of a slow wave
    double drift_frames = 2400;    // its period
    double heavy = 0.002;          // share of frames that are heavy
    double heavy_factor = 1.8;     // their work
    double scene = 0.03;           // standard deviation from scene to scene
    uint64_t scene_frames = 2700;  // a scene's length
    double display_us = 40;        // standard deviation of when a frame is seen
    std::vector<double> factors;   // of frames, in turn, instead of how their work varies
};

enum class governor {
    fit,    // the lowest clock that holds the frame with a quarter of headroom
    eager,  // the lowest clock at which half of the time is rest
    max,    // always the cap
};

// What a game is played on.
struct environment {
    device_model device;
    double panel_hz = 59.92;
    governor picks = governor::fit;
    int buffers = 3;
    double base_mw = 0;
};

// A game while it is played.
struct play_state {
    uint64_t frame = 0;
    double time_us = 0;   // when the frame was ready that was begun last
    double begun_us = 0;  // when that was
    int64_t shown = 0;    // periods at whose end the last frame was seen, and the one before
    int64_t shown_before = 0;
    double late_us = 0;                  // how much later than that the last frame was seen
    double expected = 1;                 // factor of work that the governor expects
    size_t picked[resource_count] = {};  // points, and when they went down last
    double lowered_us[resource_count] = {};
    double chip_c = 0;     // its temperature
    double looked_us = 0;  // when that was looked at last
    size_t held_back = 0;  // points that heat takes off the clocks
    double energy_mj = 0;
    // Streams of this seed and game, and what lasts a scene.
    random_stream noise, heavy, scene, display, touch;
    double drift_phase = 0;
    double scene_factor = 1;
};
play_state play_begin(uint64_t seed, const game_work &game, const environment &on);

// Plays one frame with clocks no higher than the points `caps`; the interval since the last one, in
// microseconds, as the display has it.
double play_frame(play_state *state, const game_work &game, const variation &varies,
                  const environment &on, const size_t caps[resource_count]);
