// What follows from frames while they are played into a device: caps, measurements, janks, and
// whether the analyser looked at them at all.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tools/recording/effects.h"
#include "tools/recording/run_figures.h"
#include "tools/recording/timeline.h"

constexpr int frame_locks = 4;  // that suspend the analyser, by the numbers that its log has

struct frame_outcome {
    timeline line;
    effects present;
    run_figures figures;
    std::map<std::string, std::vector<std::string>> caps;  // values by cap, the one before first
    bool locked[frame_locks] = {};                         // at present
    bool blamed[frame_locks] = {};                         // at some time since the beginning
    bool ever_suspended = false;
    bool ever_awake = false;
};

// Begins to look; what the device's files tell up to now is how things stand.
frame_outcome frame_outcome_begin(const std::string &root);

// Takes what has been written since; may be called while a play goes on.
void frame_outcome_take(frame_outcome *outcome);

// Takes the rest and says it, in lines.
std::string frame_outcome_end(frame_outcome *outcome);
