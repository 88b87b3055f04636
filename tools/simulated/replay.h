// Replay: the whole daemon on what a recording's daemon took up, in the simulator.
#pragma once

#include <string>
#include <vector>

#include "simulator/simulator.h"
#include "tools/recording/recording.h"
#include "tools/recording/step.h"

// What a replay went through.
struct replay_counts {
    size_t happenings = 0;
    size_t messages = 0;
    size_t intervals = 0;
    size_t records = 0;       // that came out
    int64_t duration_ns = 0;  // of the recording
};

// The first thing that came out otherwise than recorded.
struct replay_difference {
    bool found = false;
    size_t line = 0;  // of the happening, in the file
    int64_t time_ns = 0;
    std::string happening;
    std::vector<std::string> recorded;  // all of the happening's
    std::vector<std::string> replayed;
};

// Lets the daemon in this process take up an open recording that a daemon noted itself, and gives
// each step of which something came to `sink`. With `difference` it is compared on the way and ends
// at the first one. Empty, or what went wrong.
std::string replay_exactly(recording *file, const simulated_figures &figures, replay_counts *counts,
                           replay_difference *difference, const step_taker &sink);
