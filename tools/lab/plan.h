// A plan of holds: which cap stands where, and when, so that a recording of a game that was played
// under it tells how much work its frames are.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/lab/device_model.h"

// A cap that is set.
struct planned_cap {
    double time_s = 0;  // since the plan began
    int which = 0;      // resource
    size_t point = 0;   // of the device
};

struct hold_plan {
    std::vector<planned_cap> caps;  // in the order of time; the last ones end it
    std::string error;              // empty, or what is wrong, with its line where it has one
};

// Four caps of the big cluster with three of the GPU, or as many as there are, from the highest
// clock to the lowest, where even light games are late; each pair stands for `hold_s` seconds in
// all, in turns: what the game does at a time must not fall upon one of them.
hold_plan plan_make(const device_model &device, double hold_s);

// As a list, "SECONDS set_tmk_freq NAME FREQUENCY" a line, and read again.
std::string plan_text(const hold_plan &plan, const device_model &device);
hold_plan plan_read(const std::string &path, const device_model &device);

// What is set at one time, as the daemon's library takes it.
std::string plan_call(const planned_cap &cap, const device_model &device);
