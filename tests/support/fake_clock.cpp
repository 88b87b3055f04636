#include "tests/support/fake_clock.h"

#include <unistd.h>

#include <atomic>

#include "platform/clock.h"

namespace {

std::atomic<int64_t> now_ns = 1000000000000;
std::atomic<bool> sleep_moves_clock = false;

}  // namespace

int64_t clock_monotonic_ns(void) {
    return now_ns;
}

void clock_sleep_us(int64_t duration_us) {
    if (sleep_moves_clock)
        now_ns += duration_us * 1000;
    else
        usleep(static_cast<useconds_t>(duration_us));
}

void advance_clock_ms(int64_t ms) {
    now_ns += ms * 1000000;
}

void let_sleep_move_clock(void) {
    sleep_moves_clock = true;
}
