// What a few plays say of all: means with the interval that holds the mean of many more.
#pragma once

#include <vector>

// The mean of some plays. In 95 of 100 cases the mean of all lies from `low` to `high`.
struct estimate {
    double mean = 0;
    double low = 0;  // -infinity and infinity where a single play tells nothing of others
    double high = 0;
};

// By Student's distribution, with skewness taken into account. `values` has one of each play, each
// from its own seed.
estimate estimate_of(const std::vector<double> &values);

// The bound that the mean of all is below in 95 of 100 cases: the one-sided one.
double upper_bound_of(const std::vector<double> &values);

// a - b, play by play: those at one index are of the same work.
std::vector<double> paired_difference(const std::vector<double> &a, const std::vector<double> &b);
