#include "tests/support/fake_clock.h"

#include <atomic>

#include "platform/clock.h"

namespace {

std::atomic<int64_t> now_ns = 1000000000000;

}  // namespace

int64_t clock_monotonic_ns(void) {
    return now_ns;
}

void advance_clock_ms(int64_t ms) {
    now_ns += ms * 1000000;
}
