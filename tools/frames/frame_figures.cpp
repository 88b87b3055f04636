#include "tools/frames/frame_figures.h"

#include <algorithm>
#include <functional>
#include <numeric>

namespace {

constexpr double second_us = 1e6;

// The rate at the mean of the slowest of one in `part` frames; `slowest_first` is in that order.
double low_rate(const std::vector<double> &slowest_first, size_t part) {
    const size_t count = std::max<size_t>(1, slowest_first.size() / part);
    const auto begin = slowest_first.begin();
    const double sum_us = std::accumulate(begin, begin + static_cast<ptrdiff_t>(count), 0.0);
    return second_us * static_cast<double>(count) / sum_us;
}

}  // namespace

double frame_median(std::vector<double> values) {
    if (values.empty())
        return 0;
    const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    if (values.size() % 2 != 0)
        return *middle;
    return (*middle + *std::max_element(values.begin(), middle)) / 2;
}

frame_figures frame_figures_of(const std::vector<double> &intervals_us) {
    frame_figures figures;
    if (intervals_us.empty())
        return figures;
    std::vector<double> sorted = intervals_us;
    std::sort(sorted.begin(), sorted.end(), std::greater<>());
    const auto above = [&sorted](double bound_us) {
        return static_cast<size_t>(
            std::lower_bound(sorted.begin(), sorted.end(), bound_us, std::greater<>()) -
            sorted.begin());
    };
    const double sum_us = std::accumulate(sorted.begin(), sorted.end(), 0.0);
    figures.intervals = sorted.size();
    figures.median_us = frame_median(intervals_us);
    figures.duration_s = sum_us / second_us;
    figures.fps_mean = static_cast<double>(sorted.size()) / figures.duration_s;
    figures.fps_median = second_us / figures.median_us;
    figures.fps_1_low = low_rate(sorted, 100);
    figures.fps_0_1_low = low_rate(sorted, 1000);
    figures.above_1_5_median = above(1.5 * figures.median_us);
    figures.above_2_median = above(2 * figures.median_us);
    return figures;
}
