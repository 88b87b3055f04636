// A monotonic clock that moves only when told; it begins at a thousand seconds.
#pragma once

#include <cstdint>

void advance_clock_ms(int64_t ms);
