#include "platform/clock.h"

#include <time.h>
#include <unistd.h>

#include "platform/host/recording.h"

int64_t clock_monotonic_ns(void) {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    const int64_t now_ns = static_cast<int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec;
    recording_note_clock(now_ns);
    return now_ns;
}

void clock_sleep_us(int64_t duration_us) {
    constexpr int64_t second_us = 1000000;  // usleep need not take as much
    if (duration_us >= second_us)
        sleep(static_cast<unsigned>(duration_us / second_us));
    if (duration_us % second_us != 0)
        usleep(static_cast<useconds_t>(duration_us % second_us));
}
