// Pilot measurement: learns an activity's frame-interval profile while every cap is released. It
// measures and judges; the interval decision acts on the verdict. Called with `fia_mutex` held.
#pragma once

#include "fia/records.h"

// Intervals of a measurement, before the tunables divide them.
constexpr int32_t fia_pm_length = 900;

enum fia_verdict {
    fia_verdict_complete,  // a profile to store
    fia_verdict_poor,      // no profile: measure again, while retries are left
};

// Resets the current entry's measurement, releases every cap and enters PM.
void fia_pilot_start(void);

// Adds one interval to the current bucket.
void fia_pilot_accumulate(uint64_t var);

// Ends the measurement: which buckets belong to the profile, and whether it is good enough.
fia_verdict fia_pilot_evaluate(void);

// Orders 32-bit counts from the largest down, for qsort.
int compare(const void *a, const void *b);
