// One-shot timers, stepped by hand.
#include "core/timer.h"

#include <gtest/gtest.h>

#include "simulator/allocation.h"
#include "tests/support/fake_clock.h"
#include "tests/support/fake_thread.h"
#include "tests/support/log_sink.h"
#include "tests/support/memory.h"

namespace {

std::string fired;

void a() {
    fired += "a";
}
void b() {
    fired += "b";
}

TEST(Timer, OtherCallbackHasNoTurnUntilTheFirstHasRun) {
    EXPECT_EQ(add_timer_event(0, 1000, a), 0);
    EXPECT_EQ(add_timer_event(0, 500, a), 1);
    EXPECT_EQ(add_timer_event(0, 9000, b), -22);
    EXPECT_EQ(errors_logged("Incorrect callbacks ingore timer request"), 1);
    advance_clock_ms(999);
    EXPECT_EQ(check_expired_work(), 1);
    advance_clock_ms(1);
    EXPECT_EQ(check_expired_work(), 0);
    EXPECT_EQ(check_expired_work(), 0);
    EXPECT_EQ(fired, "a");
}

TEST(Timer, DueTimersFireInSlotOrder) {
    add_timer_event(5, 0, b);
    add_timer_event(2, -7, a);
    add_timer_event(6, INT64_MAX, b);
    bool ran;
    EXPECT_EQ(timer_round_us(&ran), 100000);  // one is still armed
    EXPECT_TRUE(ran);
    EXPECT_EQ(timer_round_us(&ran), 100000);  // at the same time: time has not run backwards
    EXPECT_FALSE(ran);
    EXPECT_EQ(fired, "ab");
}

TEST(Timer, ClockThatRunsBackwardsReleasesAll) {
    add_timer_event(3, 10000, b);
    add_timer_event(1, 90000, a);
    EXPECT_EQ(check_expired_work(), 1);
    advance_clock_ms(-1);
    bool ran;
    EXPECT_EQ(timer_round_us(&ran), 500000);
    EXPECT_EQ(fired, "ab");
    EXPECT_EQ(infos_logged("Overflow release all"), 1);
    EXPECT_EQ(add_timer_event(3, 10, a), 0);
}

TEST(Timer, ThatHasFiredIsFreed) {
    EXPECT_TRUE(gives_back_what_it_takes([] {
        fired.clear();
        add_timer_event(4, 0, a);
        check_expired_work();
    }));
}

TEST(Timer, RefusesWhatItCannotServe) {
    EXPECT_EQ(add_timer_event(7, 10, a), -22);
    EXPECT_EQ(errors_logged("Unknown timer request 7"), 1);
    fail_allocation_after(0);
    EXPECT_EQ(add_timer_event(0, 10, a), -12);
    EXPECT_EQ(errors_logged("Failed to allocate memeory"), 1);
    EXPECT_EQ(add_timer_event(0, 10, a), 0);
    EXPECT_EQ(requested_threads(), std::vector<std::string>{"timer"});
}

}  // namespace
