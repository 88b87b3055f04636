// What came out of the simulator, as entries of a timeline.
#pragma once

#include <vector>

#include "tools/recording/timeline.h"

// Those since the last call, at nanoseconds since the start.
std::vector<timeline_entry> take_simulated();
