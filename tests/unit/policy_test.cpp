// The policy thread and the hand-over to it, with real threads.
#include "resource/policy.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "core/event_manager.h"

namespace {

std::atomic<int> handlers_run = 0;
std::atomic<int> last_state = -1;
std::atomic<int> running = 0;
std::atomic<int> overlaps = 0;

template <event_id id>
void on_state() {
    overlaps += running.exchange(1);
    last_state = id;
    usleep(200);
    running = 0;
    ++handlers_run;
}

void wait_for_handlers(int count) {
    while (handlers_run < count)
        usleep(100);
}

struct Policy : testing::Test {
    void SetUp() override {
        ASSERT_EQ(init_event_manager(), 0);
        register_callback_for_event(EV_STATE_IDLE, "t", on_state<EV_STATE_IDLE>);
        register_callback_for_event(EV_STATE_GAME_DEFAULT, "t", on_state<EV_STATE_GAME_DEFAULT>);
        register_callback_for_event(EV_STATE_GAME_TUNER, "t", on_state<EV_STATE_GAME_TUNER>);
        register_callback_for_event(EV_STATE_GRAPHIC_TUNE, "t", on_state<EV_STATE_GRAPHIC_TUNE>);
        register_callback_for_event(EV_STATE_FPS_TUNE, "t", on_state<EV_STATE_FPS_TUNE>);
        ASSERT_EQ(start_policy_manager(), 0);
        wait_for_handlers(1);
    }
};

TEST_F(Policy, LastWordWinsEvenBeforeTheOneBeforeHasStarted) {
    for (int round = 0; round < 300; ++round) {
        ASSERT_EQ(change_state(state_game_default), 1);
        ASSERT_EQ(change_state(state_idle), 1) << "round " << round;
    }
    wait_for_handlers(1 + 2 * 300);
    EXPECT_EQ(last_state, EV_STATE_IDLE);
}

TEST_F(Policy, EveryAcceptedHandOverRunsOnceAndAlone) {
    std::atomic<int> accepted = 0;
    std::vector<std::thread> callers;
    for (int caller = 0; caller < 4; ++caller)
        callers.emplace_back([&accepted, caller] {
            for (int i = 0; i < 100; ++i)
                accepted += change_state((caller + i) % policy_state_count);
        });
    for (std::thread &caller : callers)
        caller.join();
    wait_for_handlers(1 + accepted);
    usleep(20000);
    EXPECT_EQ(handlers_run, 1 + accepted);
    EXPECT_GT(accepted, 100);
    EXPECT_EQ(overlaps, 0);
}

// Its first handler is slow, and the word comes while it runs.
TEST(PolicyStart, HearsAWordBeforeTheThreadWaits) {
    ASSERT_EQ(init_event_manager(), 0);
    register_callback_for_event(EV_STATE_IDLE, "t", [] { usleep(50000); });
    register_callback_for_event(EV_STATE_GAME_TUNER, "t", on_state<EV_STATE_GAME_TUNER>);
    ASSERT_EQ(start_policy_manager(), 0);
    EXPECT_EQ(change_state(state_idle), 0);
    EXPECT_EQ(change_state(state_game_tuner), 1);
    for (int i = 0; i < 50000 && handlers_run == 0; ++i)
        usleep(100);
    EXPECT_EQ(last_state, EV_STATE_GAME_TUNER);
}

}  // namespace
