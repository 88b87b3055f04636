// How the work of frames varies, from frame times that somebody recorded.
#pragma once

#include <string>

#include "tools/lab/model.h"

// Lets work vary as the frame times of a file vary around their median: the times at which frames
// were ready, where the file has them. Intervals that stand on a panel's grid are refused: those
// say how late frames were, not how much work they had. Empty, or what is wrong.
std::string variation_read(const std::string &path, variation *varies);
