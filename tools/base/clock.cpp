#include "tools/base/clock.h"

#include <time.h>

namespace {

int64_t read_clock(clockid_t clock) {
    timespec now;
    clock_gettime(clock, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec;
}

}  // namespace

int64_t monotonic_ns() {
    return read_clock(CLOCK_MONOTONIC);
}

int64_t wall_ns() {
    return read_clock(CLOCK_REALTIME);
}
