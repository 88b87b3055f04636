#include "fia/statistics.h"

#include <errno.h>

#include "core/log.h"

namespace {

constexpr uint64_t us_per_unit = 10;

}  // namespace

void fia_stats_init(fia_stats *stats) {
    *stats = {};
    stats->mean = interval_60fps;
    stats->sum = fia_sample_count * interval_60fps;
    stats->sum_sq = fia_sample_count * interval_60fps * interval_60fps;
    for (uint64_t &sample : stats->samples)
        sample = interval_60fps;
}

int fia_stats_add(fia_stats *stats, int32_t interval_us) {
    if (static_cast<uint32_t>(stats->idx) >= fia_sample_count) {
        log_error("interval index is out of bound: %d", stats->idx);
        return -EINVAL;
    }
    // The sign is carried into all 64 bits before the division, and the sums wrap: what a negative
    // interval adds, the same interval takes away again.
    const uint64_t added = static_cast<uint64_t>(static_cast<int64_t>(interval_us)) / us_per_unit;
    uint64_t &sample = stats->samples[stats->idx];
    stats->sum += added - sample;
    stats->sum_sq += added * added - sample * sample;
    stats->mean = stats->sum / fia_sample_count;
    const uint64_t square_mean = stats->sum_sq / fia_sample_count;
    const uint64_t mean_square = stats->mean * stats->mean;
    stats->var = square_mean > mean_square ? square_mean - mean_square : 0;
    sample = added;
    stats->idx = stats->idx < fia_sample_count - 1 ? stats->idx + 1 : 0;
    return 0;
}
