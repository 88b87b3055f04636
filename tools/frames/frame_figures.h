// What people say of a recording: frame rates and how even its frames are.
//
// A rate is frames by the time that they took, not a mean of rates. The 1 % low is the rate at the
// mean of the slowest hundredth of all frames (of their number, rounded down, at least one frame);
// the 0.1 % low that of the slowest thousandth.
#pragma once

#include <cstddef>
#include <vector>

struct frame_figures {
    size_t intervals = 0;
    double median_us = 0;  // of an even number: between the two in the middle
    double duration_s = 0;
    double fps_mean = 0;
    double fps_median = 0;
    double fps_1_low = 0;
    double fps_0_1_low = 0;
    size_t above_1_5_median = 0;  // frames longer than so many medians
    size_t above_2_median = 0;
};

// The figures of intervals above 0; all 0 where there is none.
frame_figures frame_figures_of(const std::vector<double> &intervals_us);

// The median; 0 of nothing.
double frame_median(std::vector<double> values);
