// The steps of the short day: what is told of each, what is done, and what must reach the hardware,
// the services and the properties by it.
#pragma once

#include <string>
#include <vector>

#include "tools/timeline.h"

struct day {
    timeline line;
    std::vector<std::string> calls;  // of the present step: hardware, services, properties
    int missing;
};

struct day_step {
    const char *story;
    void (*act)(day *today);
    int pause_ms;                       // at least; what is still expected is waited for
    std::vector<std::string> expected;  // what reaches hardware, services and properties
};

extern const std::vector<day_step> day_steps;
