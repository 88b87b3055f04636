#include "platform/clock.h"

#include <time.h>

int64_t clock_monotonic_ns(void) {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec;
}
