// Mean and variance of the last four intervals. Called with `fia_mutex` held.
#pragma once

#include "fia/records.h"

// Four frames at 60 frames per second.
void fia_stats_init(fia_stats *stats);

// Adds an interval in microseconds; a negative one becomes a huge sample that leaves no trace once
// four others have come. 0, or -EINVAL with a log line when the ring position is out of bounds.
int fia_stats_add(fia_stats *stats, int32_t interval_us);

// The oldest of the four samples.
inline uint64_t fia_stats_oldest(const fia_stats *stats) {
    return stats->samples[stats->idx];
}
