// The game tuner's decision with its boosts.
#include "resource/game_tuner.h"

#include <gtest/gtest.h>

#include "core/event_manager.h"
#include "core/timer.h"
#include "resource/fps_manager.h"
#include "resource/requestor.h"
#include "tests/support/allocation.h"
#include "tests/support/fake_clock.h"
#include "tests/support/log_sink.h"
#include "tests/support/recorder.h"
#include "tests/support/test_device.h"

namespace {

using calls = std::vector<std::string>;
using ids = std::vector<int>;

struct GameTuner : testing::Test {
    test_device device;

    void SetUp() override {
        ASSERT_EQ(init_event_manager(), 0);
        record_events();
        ASSERT_EQ(start_fps_manager(), 0);
        fps_manager_set_grant(requestor_game_tuner, 1);
        device_calls(&device);
    }

    calls after_ms(int64_t ms) {
        advance_clock_ms(ms);
        check_expired_work();
        return device_calls(&device);
    }
};

TEST_F(GameTuner, DecidesByPolicyGameModeAndRate) {
    const struct {
        int policy, mode, game_on, fps;
        ids raised;
        bool tuned;
    } cases[] = {
        {0, 1, 1, 45, {31}, false}, {0, 1, 0, 45, {}, false},   {1, 1, 0, 45, {}, false},
        {1, 0, 1, 45, {31}, false}, {1, 2, 1, 45, {31}, false}, {1, 1, 1, 19, {31}, false},
        {1, 1, 1, 61, {31}, false}, {1, 1, 1, 20, {30}, true},  {-1, 1, 7, 60, {30}, true},
    };
    for (const auto &row : cases) {
        set_game_tuner_policy(row.policy);
        set_game_tuner_mode(row.mode);
        take_raised();
        clear_log();
        EXPECT_EQ(set_game_mode(row.game_on, row.fps), 0);
        EXPECT_EQ(take_raised(), row.raised) << row.fps;
        after_ms(1000);
        clear_log();
        requestor_request_fps(requestor_game_tuner, 61);  // no request: shows what there was
        EXPECT_EQ(count_logged_like("CF60"), row.tuned && row.fps < 60 ? 1 : 0) << row.fps;
    }
    set_game_tuner_policy(1);
    set_game_tuner_mode(1);
    clear_log();
    set_game_mode(1, 75);
    EXPECT_EQ(errors_logged("Game tuner mode"), 1);
}

TEST_F(GameTuner, LiftsItsRateWhileTheScreenChanges) {
    set_game_tuner_policy(1);
    set_game_tuner_mode(1);
    set_game_mode(1, 45);
    EXPECT_EQ(after_ms(999), calls{});
    EXPECT_EQ(after_ms(1), calls{"request_fps 45"});

    notify_event(EV_ROTATION);
    EXPECT_EQ(device_calls(&device), calls{"request_fps 60"});
    EXPECT_EQ(after_ms(500), calls{});
    notify_event(EV_APP_CHANGE);  // ends before the rotation's boost does
    notify_event(EV_WINDOW_CHANGED);
    EXPECT_EQ(after_ms(1499), calls{});
    EXPECT_EQ(after_ms(1), calls{"request_fps 45"});

    // Callbacks are registered once, however often a game is tuned.
    set_game_mode(1, 30);
    EXPECT_EQ(device_calls(&device), calls{"request_fps 60"});
    EXPECT_EQ(after_ms(1000), calls{"request_fps 30"});
    notify_event(EV_ROTATION);
    set_game_mode(0, 30);  // the game is left before the boost ends
    EXPECT_EQ(after_ms(2000), calls{"request_fps 60"});
}

TEST_F(GameTuner, RegistersItsBoostsAgainAfterAFailure) {
    set_game_tuner_policy(1);
    set_game_tuner_mode(1);
    fail_allocation_after(0);
    set_game_mode(1, 45);
    EXPECT_EQ(after_ms(1000), calls{"request_fps 45"});
    notify_event(EV_ROTATION);
    EXPECT_EQ(device_calls(&device), calls{});
    set_game_mode(1, 45);
    EXPECT_EQ(after_ms(1000), (calls{"request_fps 60", "request_fps 45"}));
    notify_event(EV_ROTATION);
    EXPECT_EQ(device_calls(&device), calls{"request_fps 60"});
}

TEST_F(GameTuner, AnnouncesOptimizerAndOfMode) {
    set_game_tuner_policy(1);  // mode 0
    set_game_tuner_mode(1);
    set_game_tuner_policy(1);
    set_game_tuner_mode(0);
    set_game_tuner_policy(0);
    EXPECT_EQ(take_raised(), (ids{34, 35, 35, 34, 35}));
    set_ofmode_control(1, 1);
    set_ofmode_control(1, 0);
    set_ofmode_control(0, 5);
    set_ofmode_control(2, -1);
    EXPECT_EQ(take_raised(), (ids{36, 37, 37, 37}));
}

}  // namespace
