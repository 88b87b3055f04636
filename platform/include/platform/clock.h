// The monotonic clock and sleeping on it, in one place so that a simulation can bring its own.
#pragma once

#include <cstdint>

// Nanoseconds of CLOCK_MONOTONIC. Any thread may call.
int64_t clock_monotonic_ns(void);

// Sleeps for so many microseconds, or less when a signal comes. Any thread may call.
void clock_sleep_us(int64_t duration_us);
