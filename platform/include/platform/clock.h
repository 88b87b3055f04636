// The monotonic clock, in one place so that a test can bring its own.
#pragma once

#include <cstdint>

// Nanoseconds of CLOCK_MONOTONIC. Any thread may call.
int64_t clock_monotonic_ns(void);
