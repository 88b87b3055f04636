#include "platform/clock.h"

#include <time.h>

int64_t clock_monotonic_ns(void) {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec;
}

void clock_sleep_us(int64_t duration_us) {
    constexpr int64_t second_us = 1000000;
    timespec duration;
    duration.tv_sec = static_cast<time_t>(duration_us / second_us);
    duration.tv_nsec = static_cast<long>(duration_us % second_us) * 1000;
    nanosleep(&duration, nullptr);
}
