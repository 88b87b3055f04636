// One-shot timers, stepped by hand.
#include "core/timer.h"

#include <gtest/gtest.h>

#include "core/debug_gate.h"
#include "tests/support/allocation.h"
#include "tests/support/fake_clock.h"
#include "tests/support/fake_thread.h"
#include "tests/support/log_sink.h"

namespace {

std::string fired;

void a() {
    fired += "a";
}
void b() {
    fired += "b";
}

TEST(Timer, SameCallbackMovesTheEndOutNeverIn) {
    debug_gate_set(true, 128);
    EXPECT_EQ(add_timer_event(0, 1000, a), 0);
    EXPECT_EQ(infos_logged("Timer 0 Requested for 1000 ms at 1000000 ms"), 1);
    advance_clock_ms(300);
    EXPECT_EQ(add_timer_event(0, 1000, a), 1);
    EXPECT_EQ(infos_logged("Timer 0 Event End time updated"), 1);
    EXPECT_EQ(add_timer_event(0, 500, a), 1);
    EXPECT_EQ(infos_logged("Timer event ignored"), 1);
    EXPECT_EQ(add_timer_event(0, 9000, b), -22);
    EXPECT_EQ(errors_logged("Incorrect callbacks ingore timer request"), 1);
    advance_clock_ms(999);
    EXPECT_EQ(check_expired_work(), 1);
    EXPECT_EQ(fired, "");
    advance_clock_ms(1);
    EXPECT_EQ(check_expired_work(), 0);
    EXPECT_EQ(fired, "a");
    EXPECT_EQ(infos_logged("Timer for 0 is exprired 1000000~1001300 for 1300"), 1);
    EXPECT_EQ(check_expired_work(), 0);
    EXPECT_EQ(fired, "a");
    EXPECT_EQ(requested_threads(), std::vector<std::string>{"timer"});
}

TEST(Timer, DueTimersFireInSlotOrder) {
    add_timer_event(5, 0, b);
    add_timer_event(2, -7, a);
    add_timer_event(6, INT64_MAX, b);
    EXPECT_EQ(check_expired_work(), 1);
    EXPECT_EQ(fired, "ab");
}

TEST(Timer, ClockThatRunsBackwardsReleasesAll) {
    add_timer_event(3, 10000, b);
    add_timer_event(1, 90000, a);
    EXPECT_EQ(check_expired_work(), 1);
    advance_clock_ms(-1);
    EXPECT_EQ(check_expired_work(), 0);
    EXPECT_EQ(fired, "ab");
    EXPECT_EQ(infos_logged("Overflow release all"), 1);
    EXPECT_EQ(add_timer_event(3, 10, a), 0);
}

TEST(Timer, RefusesWhatItCannotServe) {
    refuse_threads(true);
    EXPECT_EQ(add_timer_event(0, 10, a), -22);
    EXPECT_EQ(errors_logged("Error initializing internal timer thread\n"), 1);
    EXPECT_EQ(errors_logged("Failed to initialize internal timer"), 1);
    refuse_threads(false);
    EXPECT_EQ(add_timer_event(7, 10, a), -22);
    EXPECT_EQ(errors_logged("Unknown timer request 7"), 1);
    fail_allocation_after(0);
    EXPECT_EQ(add_timer_event(0, 10, a), -12);
    EXPECT_EQ(errors_logged("Failed to allocate memeory"), 1);
    EXPECT_EQ(add_timer_event(0, 10, a), 0);
    EXPECT_EQ(requested_threads().size(), 2u);
}

}  // namespace
