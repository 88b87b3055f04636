// A monotonic clock that moves only when told; it begins at a thousand seconds.
#pragma once

#include <cstdint>

void advance_clock_ms(int64_t ms);

// Whoever sleeps moves the clock from now on, and is awake at once; else sleep takes real time, as
// it is for another thread of the test.
void let_sleep_move_clock(void);
