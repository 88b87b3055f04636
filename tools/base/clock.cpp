#include "tools/base/clock.h"

#include <time.h>

namespace {

int64_t read_clock(clockid_t clock) {
    timespec time;
    clock_gettime(clock, &time);
    return static_cast<int64_t>(time.tv_sec) * 1000000000 + time.tv_nsec;
}

}  // namespace

int64_t monotonic_ns() {
    return read_clock(CLOCK_MONOTONIC);
}

int64_t wall_ns() {
    return read_clock(CLOCK_REALTIME);
}
