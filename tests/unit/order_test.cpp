// Two threads report at once: modes are announced in the order of their evaluation.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "context/running_app.h"
#include "core/event_manager.h"
#include "resource/acceptor.h"
#include "resource/policy.h"
#include "tests/support/log_sink.h"
#include "tests/support/recorder.h"

namespace {

constexpr int rounds = 300;

TEST(AnnouncedModes, FollowEachOtherWithoutAGap) {
    ASSERT_EQ(init_event_manager(), 0);
    ASSERT_EQ(init_el(), 0);
    ASSERT_EQ(start_policy_manager(), 0);
    record_events();

    const auto alternate = [](event_id on, event_id off) {
        for (int i = 0; i < rounds; ++i) {
            notify_event(on);
            notify_event(off);
        }
    };
    std::thread listener(alternate, EV_GAME_APP_RESUMED, EV_GAME_APP_PAUSED);
    std::thread monitor(alternate, EV_SCREEN_OFF, EV_SCREEN_ON);
    std::thread calls(alternate, EV_INCOMING_CALL_ON, EV_INCOMING_CALL_OFF);
    listener.join();
    monitor.join();
    calls.join();

    // What is left is always what was entered last, from the default game that it begins with.
    int entered = EV_MODE_GAME_DEFAULT;
    int modes = 0;
    for (const int id : take_raised()) {
        if (id == EV_MODE_GAME_DEFAULT_EXIT || id == EV_MODE_NONE_EXIT) {
            EXPECT_EQ(entered, id == EV_MODE_NONE_EXIT ? EV_MODE_NONE : EV_MODE_GAME_DEFAULT);
            entered = 0;
        } else if (id == EV_MODE_NONE || id == EV_MODE_GAME_DEFAULT) {
            EXPECT_TRUE(entered == 0 || entered == id);
            entered = id;
            ++modes;
        }
    }
    EXPECT_EQ(modes, 6 * rounds);
    EXPECT_EQ(entered, EV_MODE_NONE);
    EXPECT_EQ(get_available_app_mode(), mode_none);
}

}  // namespace
