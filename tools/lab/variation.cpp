#include "tools/lab/variation.h"

#include <algorithm>
#include <cmath>

#include "tools/base/words.h"
#include "tools/frames/frame_file.h"

namespace {

constexpr const char *ready_column = "frameReadyTime";

constexpr double on_grid = 0.04;     // of the median, from a whole multiple of it
constexpr double grid_share = 0.95;  // of intervals that stand so near

double median_of(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<long>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// Whether nearly every interval is a whole number of the same period.
bool stands_on_grid(const std::vector<double> &intervals_us, double median_us) {
    const auto near = std::count_if(intervals_us.begin(), intervals_us.end(), [&](double each) {
        const double periods = each / median_us;
        return periods > 0.5 && std::fabs(periods - std::round(periods)) < on_grid;
    });
    return static_cast<double>(near) >= grid_share * static_cast<double>(intervals_us.size());
}

}  // namespace

std::string variation_read(const std::string &path, variation *varies) {
    frame_file frames = frame_file_read(path, {});
    if (frames.error.empty() && frames.format.find("SurfaceFlinger") != std::string::npos) {
        frame_options ready;
        ready.column = ready_column;
        frames = frame_file_read(path, ready);
    }
    if (!frames.error.empty())
        return path + ": " + frames.error;
    const double median_us = median_of(frames.intervals_us);
    if (frames.column != ready_column && stands_on_grid(frames.intervals_us, median_us))
        return path + ": its frames stand on a panel's grid of " + short_number(median_us / 1000) +
               " ms: they say how late frames were seen, not how much work they had";
    for (double &interval_us : frames.intervals_us)
        interval_us /= median_us;
    varies->factors = std::move(frames.intervals_us);
    return {};
}
