// A stimulus: the happenings that a simulated daemon is given, wherever they come from: a
// recording, a log, a game's intervals. Timers and the thermal engine's polls are the simulator's
// own.
#pragma once

#include <string>
#include <vector>

#include "simulator/simulator.h"
#include "tools/recording/recording.h"
#include "tools/recording/step.h"

struct stimulus {
    simulator_setup setup;
    std::vector<happening> happenings;  // at nanoseconds since its start, in their order
    int64_t end_ns = 0;
    std::string error;                 // empty, or why there is none
    std::vector<std::string> remarks;  // what it leaves open
};

// What a recording's daemon took up.
stimulus stimulus_of_recording(recording *file);

// A game in front, at 60 frames per second, and its intervals.
stimulus stimulus_of_intervals(const std::vector<double> &intervals_us);

// Plays it; each step of which something came goes to `sink`. Empty, or what went wrong.
std::string stimulus_play(const stimulus &given, const step_taker &sink);
