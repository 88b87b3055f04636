// What each client's codes raise and leave behind.
#include "ipc/client_handlers.h"

#include <gtest/gtest.h>

#include "client/dvx_client.h"
#include "context/app_context.h"
#include "core/debug_gate.h"
#include "core/event_manager.h"
#include "core/timer.h"
#include "features/automode.h"
#include "features/low_power_mode.h"
#include "features/timed_mitigation.h"
#include "resource/fps_manager.h"
#include "resource/game_tuner.h"
#include "tests/support/log_sink.h"
#include "tests/support/recorder.h"
#include "tests/support/test_device.h"

namespace {

using calls = std::vector<std::string>;
using ids = std::vector<int>;

struct Handlers : testing::Test {
    test_device device;

    void SetUp() override {
        ASSERT_EQ(init_event_manager(), 0);
        record_events();
        ASSERT_EQ(start_fps_manager(), 0);
        fps_manager_set_grant(0, 1);
        device_calls(&device);
        clear_log();
    }

    static ids powerhal(int32_t code, std::initializer_list<int32_t> values) {
        int32_t payload[64] = {};
        std::copy(values.begin(), values.end(), payload);
        handler_powerhal_callback(code, payload);
        return take_raised();
    }

    static ids powerhal_text(int32_t code, const std::string &text) {
        char payload[256] = {};
        text.copy(payload, sizeof(payload));
        handler_powerhal_callback(code, payload);
        return take_raised();
    }

    static ids other(void (*handler)(int32_t, const void *), int32_t code, int32_t value) {
        const int32_t payload[64] = {value};
        handler(code, payload);
        return take_raised();
    }
};

TEST_F(Handlers, SwitchesRaiseOneOfTwo) {
    const struct {
        int code, on, off;
    } codes[] = {{1, 4, 5},    {2, 6, 7},    {3, 2, 3},    {8, 13, 13},  {9, 14, 14},
                 {10, 32, 33}, {11, 15, 15}, {12, 20, 21}, {13, 18, 19}, {14, 24, 25}};
    for (const auto &row : codes) {
        EXPECT_EQ(powerhal(row.code, {-7}), ids{row.on});
        EXPECT_EQ(powerhal(row.code, {0, 1}), ids{row.off});
    }
    EXPECT_EQ(other(handler_mediahal_callback, 18, 1), ids{16});
    EXPECT_EQ(other(handler_mediahal_callback, 18, 0), ids{17});
    EXPECT_EQ(other(handler_vrhal_callback, 21, 1), ids{22});
    EXPECT_EQ(other(handler_vrhal_callback, 21, 0), ids{23});
}

TEST_F(Handlers, RefuseCodesOfOthers) {
    powerhal(16, {1});
    powerhal(-1, {1});
    powerhal(INT32_MIN, {1});
    other(handler_dgpc_callback, 0, 1);
    other(handler_tmr_callback, 16, 1);
    other(handler_mediahal_callback, 17, 1);
    other(handler_vrhal_callback, 20, 1);
    const char *lines[] = {"Power HAL Handler: Code <16> is not supported.",
                           "Power HAL Handler: Code <-1> is not supported.",
                           "Power HAL Handler: Code <-2147483648> is not supported.",
                           "DGPC Handler: Code <0> is not supported.",
                           "TMR Handler : Code <16> is not supported.",
                           "Media HAL Handler: Code <17> is not supported.",
                           "VR HAL Handler: Code <20> is not supported."};
    for (const char *line : lines)
        EXPECT_EQ(errors_logged(line), 1) << line;
    EXPECT_EQ(logged_messages().size(), std::size(lines));
}

TEST_F(Handlers, GameStateGoesThroughTheTuner) {
    EXPECT_EQ(powerhal(7, {1}), ids{34});
    EXPECT_EQ(powerhal(0, {1, 1, 45, 1}), (ids{0, 35, 30, 36}));
    EXPECT_EQ(powerhal(0, {0, 0, 45, 1}), (ids{1, 37}));
    debug_gate_set(true, 1 << 5);
    EXPECT_EQ(powerhal(7, {0}), ids{35});  // the tuner mode of the game before still holds
    EXPECT_EQ(powerhal(0, {0, 1, 45, 3}), (ids{0, 35, 31, 36}));
    EXPECT_EQ(infos_logged("Game Optimizer : 0"), 1);
    EXPECT_EQ(infos_logged("ofvalue : 3"), 1);
}

TEST_F(Handlers, RequestsReachTheirFeatures) {
    activate_tmr_2cluster(3, 4);
    other(handler_tmr_callback, 17, -1);  // released at the next scan: the sign is kept
    check_expired_work();
    EXPECT_EQ(device_calls(&device),
              (calls{"request_tmr_2cluster 3 4", "request_tmr_2cluster 4294967295 4294967295"}));
    other(handler_automode_callback, 99, -7);
    EXPECT_EQ(infos_logged("automode -7"), 1);
    init_automode();
    other(handler_automode_callback, 0, 5);
    EXPECT_EQ(errors_logged("Abnormal cmd"), 1);

    init_lpm_config();
    fps_manager_set_grant(7, 1);
    device_calls(&device);
    const int32_t extreme[64] = {1, 2, 9};
    handler_lpm_callback(-1, extreme);
    EXPECT_EQ(get_lpm_mode(), 2);
    EXPECT_EQ(device_calls(&device), calls{"request_fps 30"});
}

TEST_F(Handlers, WindowIsNewsOnlyOnce) {
    debug_gate_set(true, 1 << 5);
    EXPECT_EQ(powerhal_text(4, ""), ids{});
    EXPECT_EQ(powerhal_text(4, "com.example"), ids{12});
    EXPECT_EQ(powerhal_text(4, "com.example"), ids{});
    EXPECT_EQ(infos_logged("CW : com.example"), 1);
    // A text without an end is cut; the same text is then no news.
    EXPECT_EQ(powerhal_text(4, std::string(256, 'w')), ids{12});
    EXPECT_EQ(get_current_window_name(), std::string(255, 'w'));
    EXPECT_EQ(powerhal_text(4, std::string(256, 'w')), ids{});
    EXPECT_EQ(powerhal_text(4, "%s%n"), ids{12});
    EXPECT_EQ(infos_logged("CW : %s%n"), 1);
}

TEST_F(Handlers, CurrentAppIsTheFirstPart) {
    const struct {
        const char *text, *app;
    } cases[] = {{"com.a/.Main", "com.a"},
                 {"com.a/.Main", "com.a"},
                 {"//com.b", "com.b"},
                 {"com.c", "com.c"},
                 {"", ""},
                 {"///", "///"}};
    debug_gate_set(true, 1 << 5);
    for (const auto &row : cases) {
        EXPECT_EQ(powerhal_text(5, row.text), ids{10}) << row.text;
        EXPECT_STREQ(get_current_activity_name(), row.app);
    }
    EXPECT_EQ(infos_logged("CA : com.a"), 2);
    powerhal_text(5, std::string(256, 'x'));
    EXPECT_EQ(get_current_activity_name(), std::string(255, 'x'));
}

std::string full_during_event;

TEST_F(Handlers, ActivityIsWholeWhileItIsAnnounced) {
    register_callback_for_event(EV_ACTIVITY_CHANGED, "test",
                                [] { full_during_event = get_full_activity_name(); });
    const struct {
        const char *text, *full_after, *app;
        ids raised;
    } cases[] = {{"com.a/.Main", "com.a", "com.a", {11, 10}},
                 {"com.a/.Other", "com.a", "com.a", {11}},
                 {"com.b", "com.b", "com.b", {11, 10}},
                 {"com.b", "com.b", "com.b", {11}},
                 {"//", "//", "//", {11}},
                 {"", "", "", {11}},
                 {"/com.c/x", "/com.c", "com.c", {11, 10}}};
    for (const auto &row : cases) {
        EXPECT_EQ(powerhal_text(6, row.text), row.raised) << row.text;
        EXPECT_EQ(full_during_event, row.text);
        EXPECT_STREQ(get_full_activity_name(), row.full_after);
        EXPECT_STREQ(get_current_activity_name(), row.app);
    }
    powerhal_text(6, std::string(256, 'y'));
    EXPECT_EQ(get_current_activity_name(), std::string(255, 'y'));
}

TEST_F(Handlers, HomeReadsStateAndName) {
    const struct {
        const char *text, *name;
        ids raised;
    } cases[] = {{"2:com.home", "com.home", {8, 26}},
                 {"1:com.home", "com.home", {8}},
                 {"1", "unknown", {8}},
                 {"0:com.home", "com.home", {9, 27}},
                 {"", "", {9, 27}},
                 {"::", "::", {9, 27}},
                 {":1:name", "name", {8}},
                 {"1:a:b", "a", {8}},
                 {"x:a", "a", {9, 27}},
                 {" 2x:", "unknown", {8, 26}},
                 {"4294967297:a", "a", {9, 27}},
                 {"-1:a", "a", {9, 27}}};
    for (const auto &row : cases) {
        EXPECT_EQ(powerhal_text(15, row.text), row.raised) << row.text;
        EXPECT_STREQ(get_home_activity_name(), row.name) << row.text;
    }
    powerhal_text(15, "1:" + std::string(254, 'h'));
    EXPECT_EQ(get_home_activity_name(), std::string(253, 'h'));
}

TEST_F(Handlers, FrameRateRequestsAnnounceTheFirstAndTheLast) {
    EXPECT_EQ(other(handler_dgpc_callback, 16, 60), ids{38});
    EXPECT_EQ(other(handler_dgpc_callback, 16, 45), ids{});
    EXPECT_EQ(other(handler_dgpc_callback, 16, 0), ids{39});
    EXPECT_EQ(other(handler_dgpc_callback, 16, -3), ids{39});
    EXPECT_EQ(other(handler_dgpc_callback, 16, 30), ids{38});
    EXPECT_EQ(device_calls(&device), (calls{"request_fps 45", "request_fps 60", "request_fps 30"}));
}

}  // namespace
