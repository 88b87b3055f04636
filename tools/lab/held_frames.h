// The frames of a game that were recorded under caps that are known: what its work is told from.
#pragma once

#include <string>
#include <vector>

#include "tools/lab/plan.h"

// Caps that stood together, as points of the device. The little cluster's is left out: a frame's
// work is not on it.
struct held_caps {
    size_t big = 0;
    size_t gpu = 0;
    bool operator==(const held_caps &other) const = default;
};

struct held_frame {
    size_t caps = 0;  // index
    double interval_us = 0;
    double end_us = 0;  // since its recording's first frame of the game
};

// What was drawn while a pair of caps stood.
struct held_energy {
    double mj = 0;
    double seconds = 0;
};

struct held_frames {
    std::string game;
    std::vector<held_caps> caps;      // each once, in the order in which they came
    std::vector<held_frame> frames;   // while the game was in front, recording after recording
    std::vector<held_energy> energy;  // by caps; empty: it was not measured
    double period_us = 0;             // of the panel; 0: too few frames show it
    size_t last_recording = 0;        // index of its first frame
    std::string error;                // empty, or what is wrong
};

// Takes the frames of a recording in addition. Caps are those that its daemon set, and of `plan`,
// whose time counts from the game's first frame. They are full before the first is set.
void held_frames_add(held_frames *all, const std::string &path, const device_model &device,
                     const hold_plan &plan);

// Takes what the phone drew during the recording that was added last: a table of seconds since the
// game's first frame and of mW, the mean since the row before. Samples in which caps moved are left
// out.
void held_frames_add_power(held_frames *all, const std::string &path);

// Finds the panel's period near `panel_hz`, from all frames.
void held_frames_finish(held_frames *all, double panel_hz);
