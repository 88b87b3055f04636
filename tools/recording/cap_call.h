// The call that sets a frequency cap, "set_tmk_freq NAME FREQUENCY", read in one place and one
// unit.
#pragma once

#include <string>

#include "tools/recording/record.h"

struct cap_call {
    std::string name;  // of the resource, as "TMK_GPU"
    double hertz = 0;
};

// A frequency as the library takes it, kHz of a cluster and Hz of the GPU, in Hz.
double cap_hertz(const std::string &name, double frequency);

// Reads a call. False for any other.
bool cap_call_read(const record &call, cap_call *cap);
