// The policy thread and the hand-over to it, with real threads.
#include "resource/policy.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "core/debug_gate.h"
#include "core/event_manager.h"
#include "resource/acceptor.h"
#include "tests/support/log_sink.h"

namespace {

std::atomic<int> handlers_run = 0;
std::atomic<int> last_state = -1;
std::atomic<int> running = 0;
std::atomic<int> overlaps = 0;
std::string grants;

int note_grant(int32_t requestor, int32_t grant) {
    grants += std::to_string(requestor) + "=" + std::to_string(grant) + " ";
    return 0;
}

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
        add_acceptor("fps", note_grant);
        add_acceptor("off_image_enhancer", note_grant);
        ASSERT_EQ(start_policy_manager(), 0);
        wait_for_handlers(1);
    }
};

TEST_F(Policy, EachModeHasItsStateAndEachStateItsGrants) {
    const struct {
        event_id mode;
        int state;  // -1: none
        const char *grants;
    } modes[] = {{EV_MODE_NONE, -1, ""},
                 {EV_MODE_GAME_DEFAULT, 1, "2=1 6=1 "},
                 {EV_MODE_GAME_DEFAULT, -1, ""},
                 {EV_MODE_GALLERY, -1, ""},
                 {EV_MODE_HOME, -1, ""},
                 {EV_MODE_GAME_TUNER, 2, "0=0 1=1 "},
                 {EV_MODE_BROWSER, 4, "0=1 1=0 2=0 6=0 "},
                 {EV_MODE_SNS, -1, ""},
                 {EV_MODE_GEO, 3, ""},
                 {EV_MODE_NONE, 0, ""}};
    EXPECT_EQ(grants, "0=1 1=0 2=0 5=1 6=0 7=1 3=1 ");
    int expected = 1;
    for (const auto &row : modes) {
        grants.clear();
        notify_event(row.mode);
        expected += row.state >= 0 ? 1 : 0;
        wait_for_handlers(expected);
        EXPECT_EQ(grants, row.grants) << row.mode;
        if (row.state >= 0) {
            EXPECT_EQ(last_state, 60 + row.state);
            EXPECT_EQ(change_state(row.state), 0);
        }
    }
}

TEST_F(Policy, NamesItsStatesUnderTheirBit) {
    debug_gate_set(true, 254);
    change_state(state_game_tuner);
    wait_for_handlers(2);
    EXPECT_EQ(count_logged_like("PM : "), 0);
    debug_gate_set(true, 1);
    change_state(state_graphic_tune);
    wait_for_handlers(3);
    EXPECT_EQ(infos_logged("PM : graphic_tune"), 1);
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

}  // namespace
