// The clocks of this host.
#pragma once

#include <cstdint>

// Nanoseconds of the monotonic clock, by which a virtual device's files are dated.
int64_t monotonic_ns();

// Nanoseconds of the wall clock, by which logs are.
int64_t wall_ns();
