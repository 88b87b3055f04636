// What a log tells of the messages and panel reports that a daemon took: the events that a client
// alone raises, and the lines that name what came with them.
#pragma once

#include <string_view>
#include <vector>

#include "tools/simulated/stimulus.h"

// One without a line of the daemon has an error.
stimulus stimulus_of_log_text(std::string_view text);

// From records of a log; time counts from `start_ns`.
stimulus stimulus_of_log(const std::vector<record> &records, int64_t start_ns);
