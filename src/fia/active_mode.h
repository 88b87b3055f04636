// Active mode: tests each interval against the profile in use and steps the caps: up when frames
// come late, down while the profile is held. Beside the period's it writes the fields of hits, of
// the moving averages and of the last reports, and nobody else does. Called with `fia_mutex` held.
#pragma once

#include "fia/records.h"

// Measurements that may be retried before a profile counts as one that never completes.
constexpr int32_t fia_retry_max = 10;

// Intervals over which janks are counted, before the tunables divide them.
constexpr int32_t fia_jank_intervals = 30;

// The interval that is being decided on: mean and variance of the last four, and their bucket.
struct fia_interval {
    uint64_t mean;
    uint64_t var;
    uint32_t bucket;  // fia_no_bucket: out of every bucket table
};

// Enters AM on `cur`. The debug target's answer; 0 with a log line, the mode unchanged, without
// one.
int32_t fia_active_start(void);

// One interval in AM. It may end in a new measurement.
void fia_active_decide(const fia_interval &now);
