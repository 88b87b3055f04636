// Thermal engine, what switches it, timed mitigation, low power mode, custom configurations.
#include <gtest/gtest.h>

#include <filesystem>

#include "context/app_context.h"
#include "core/event_manager.h"
#include "core/timer.h"
#include "device/virtual_device.h"
#include "features/custom_config.h"
#include "features/low_power_mode.h"
#include "features/thermal_control.h"
#include "features/thermal_engine.h"
#include "features/timed_mitigation.h"
#include "resource/fps_manager.h"
#include "tests/support/fake_clock.h"
#include "tests/support/fake_thread.h"
#include "tests/support/log_sink.h"
#include "tests/support/recorder.h"
#include "tests/support/test_device.h"

namespace {

using calls = std::vector<std::string>;

struct Thermal : testing::Test {
    test_device device;

    void SetUp() override {
        ASSERT_EQ(init_event_manager(), 0);
        record_events();
        device_calls(&device);
    }

    void start_engine() {
        init_lpm_config();
        thermal_poll poll = {};
        while (!poll_thermal_engine(&poll)) {
        }
        take_raised();
        device_calls(&device);
        clear_log();
    }

    // The switches since the last call, "NAME ON" each.
    calls switches() {
        calls switched = device_calls_of(&device, "enable_thermal_config ");
        for (std::string &call : switched)
            call = call.substr(sizeof("enable_thermal_config"));
        return switched;
    }

    calls after_ms(int64_t ms) {
        advance_clock_ms(ms);
        check_expired_work();
        return device_calls(&device);
    }
};

TEST_F(Thermal, EngineIsLoadedAfterTwelveEqualCounts) {
    EXPECT_EQ(enable_thermal_config("X", 1), -22);
    EXPECT_EQ(errors_logged("Thermal Interface is not initialized. Init it first."), 1);
    EXPECT_EQ(init_thermal_engine_support(), 0);
    EXPECT_EQ(init_thermal_engine_support(), 0);
    EXPECT_EQ(requested_threads(), calls{"thermal_check"});
    EXPECT_EQ(enable_thermal_config("X", 1), -16);
    EXPECT_EQ(infos_logged("Thermal Configuration is not loaded yet."), 1);

    thermal_poll poll = {};
    const auto polls = [&](const char *count) {
        device_answers(&device, "get_num_of_thermal_config_desc", count);
        int needed = 1;
        while (needed < 13 && !poll_thermal_engine(&poll))
            ++needed;
        return needed;
    };
    EXPECT_EQ(polls("0"), 13);
    EXPECT_EQ(polls("-1"), 13);
    device_answers(&device, "get_num_of_thermal_config_desc", "5");
    for (int i = 0; i < 11; ++i)
        EXPECT_FALSE(poll_thermal_engine(&poll));
    device_answers(&device, "get_num_of_thermal_config_desc", "0");
    EXPECT_FALSE(poll_thermal_engine(&poll));  // starts over, but remembers the 5
    EXPECT_EQ(polls("5"), 11);
    EXPECT_EQ(take_raised(), std::vector<int>{70});

    device_answers(&device, "enable_thermal_config.X", "-3");
    EXPECT_EQ(enable_thermal_config("X", 1), -3);
    EXPECT_EQ(switches(), calls{"X 1"});
}

TEST_F(Thermal, EngineThatIsMissingOrGetsNoThreadIsTriedAgain) {
    refuse_threads(true);
    EXPECT_EQ(init_thermal_engine_support(), -14);
    EXPECT_EQ(errors_logged("Error to initialzed sync notify thread."), 1);
    refuse_threads(false);
    EXPECT_EQ(init_thermal_engine_support(), 0);
}

TEST(ThermalBinding, NamesTheSymbolThatIsMissing) {
    test_device device;
    device_hide_symbol(device.root + "/vendor/lib64/libhwresource.so",
                       "verify_thermal_config_desc");
    init_lpm_config();
    EXPECT_EQ(count_logged_like("Failed to dlsym verify_thermal_config_desc : "), 1);
    EXPECT_EQ(infos_logged("This device doesn't support thermal engine"), 1);
    EXPECT_EQ(infos_logged("LPM Enabled"), 0);
    EXPECT_EQ(set_lpm_mode(1, 2, 1), 0);
    EXPECT_EQ(get_lpm_mode(), 0);
    EXPECT_EQ(requested_threads().size(), 0u);
}

TEST(ThermalBinding, SaysThatThereIsNoLibrary) {
    setenv("DVXD_ROOT", "/nowhere", 1);
    EXPECT_EQ(init_thermal_engine_support(), -22);
    EXPECT_EQ(errors_logged("No handle"), 1);
    EXPECT_EQ(infos_logged("This device doesn't support thermal engine"), 1);
}

TEST_F(Thermal, ConfigurationsFollowCameraGameAndMap) {
    start_engine();
    ASSERT_EQ(init_ts(), 0);
    const struct {
        event_id event;
        calls switched;
    } cases[] = {
        {EV_ENCODE_START, {"TCONF_CAMERA 1"}},
        {EV_ENCODE_END, {"TCONF_CAMERA 0"}},
        {EV_3RD_ENCODE_START, {"TCONF_3CAMERA 1"}},
        {EV_3RD_ENCODE_END, {"TCONF_3CAMERA 0"}},
        {EV_MODE_GAME_TUNER, {"TCONF_GAME 1", "KRYO_SS_LOW_RESERVED 1"}},
        {EV_MODE_GAME_TUNER_EXIT, {"TCONF_COMPACT 0", "TCONF_GAME 0", "KRYO_SS_LOW_RESERVED 0"}},
        {EV_MODE_GAME_DEFAULT_EXIT, {"TCONF_COMPACT 0", "TCONF_GAME 0", "KRYO_SS_LOW_RESERVED 0"}},
        {EV_MODE_GEO, {"TCONF_GEO 1"}},
        {EV_MODE_GEO_EXIT, {"TCONF_GEO 0"}},
    };
    for (const auto &row : cases) {
        notify_event(row.event);
        EXPECT_EQ(switches(), row.switched) << row.event;
    }
    for (const char *compact : {"true", "t", "True", "1"}) {
        device_set_property(&device, "sys.zuv.compactmode.enabled", compact);
        notify_event(EV_MODE_GAME_DEFAULT);
        calls expected = {"TCONF_COMPACT 1", "TCONF_GAME 1", "KRYO_SS_LOW_RESERVED 1"};
        if (compact[0] != 't')
            expected.erase(expected.begin());
        EXPECT_EQ(switches(), expected);
    }
}

TEST_F(Thermal, CustomConfigurationIsReplacedOrKept) {
    start_engine();
    EXPECT_EQ(set_custom_config("a"), -22);
    EXPECT_EQ(errors_logged("dlsym not finished!\n"), 1);
    for (const auto &[activity, config] :
         {std::pair{"a/1", "TCONF_ENABLE ONE"}, std::pair{"a/2", "TCONF_ENABLE TWO"},
          std::pair{"a/3", "OTHER THING"}})
        device_answers(&device, std::string("get_custom_config.") + activity, config);
    ASSERT_EQ(init_ts(), 0);
    const auto change = [&](const char *activity) {
        clear_log();
        set_full_activity_name(activity);
        notify_event(EV_ACTIVITY_CHANGED);
        return switches();
    };
    EXPECT_EQ(change("none"), calls{});
    EXPECT_EQ(change("a/1"), calls{"ONE 1"});
    EXPECT_EQ(infos_logged("config set complete : TCONF_ENABLE, ONE\n"), 1);
    EXPECT_EQ(change("a/1"), (calls{"ONE 0", "ONE 1"}));
    EXPECT_EQ(change("a/3"), calls{"ONE 0"});
    EXPECT_EQ(infos_logged("config set complete : OTHER, THING\n"), 1);
    EXPECT_EQ(change("a/2"), calls{"TWO 1"});

    device_answers(&device, "enable_thermal_config.TWO", "-1");
    EXPECT_EQ(change("a/1"), calls{"TWO 0"});
    EXPECT_EQ(infos_logged("restoring failed\n"), 1);
    EXPECT_EQ(change("none"), calls{"TWO 0"});
    device_answers(&device, "enable_thermal_config.TWO", "0");
    device_answers(&device, "enable_thermal_config.ONE", "-1");
    EXPECT_EQ(change("a/1"), (calls{"TWO 0", "ONE 1"}));
    EXPECT_EQ(infos_logged("config set failed : TCONF_ENABLE, ONE\n"), 1);
    EXPECT_EQ(change("none"), calls{"TWO 0"});  // it stayed the current one
    EXPECT_EQ(change("none"), calls{});
}

TEST_F(Thermal, CustomConfigurationNeedsItsWholeLibrary) {
    device_answers(&device, "init_white_list", "0");
    EXPECT_EQ(custom_config_init(), -1);
    device_answers(&device, "init_white_list", "7");
    EXPECT_EQ(custom_config_init(), 0);
}

TEST(CustomConfig, SaysWhatIsMissing) {
    test_device device;
    const std::string library = device.root + "/vendor/lib64/libdvxcc.so";
    std::filesystem::rename(library, library + ".away");
    EXPECT_EQ(custom_config_init(), -2);
    EXPECT_EQ(logged_messages().size(), 2u);
    std::filesystem::rename(library + ".away", library);
    device_hide_symbol(library, "get_custom_config");
    EXPECT_EQ(custom_config_init(), -22);
    EXPECT_EQ(count_logged_like("dlsym failed!, "), 1);
}

TEST_F(Thermal, MitigationIsRequestedOnceAndReleasedLast) {
    EXPECT_EQ(request_timed_tmr(100), -22);
    EXPECT_EQ(infos_logged("TMR is not activated."), 1);
    cb_tmr_release();
    EXPECT_EQ(device_calls(&device), calls{"request_tmr_single_cluster 4294967295"});
    start_engine();
    init_ts();
    device_calls(&device);
    notify_event(EV_APP_CHANGE);
    EXPECT_EQ(device_calls(&device), calls{"request_tmr_2cluster 0 0"});
    EXPECT_EQ(after_ms(500), calls{});
    notify_event(EV_SOFT_KEY);
    EXPECT_EQ(after_ms(1499), calls{});
    EXPECT_EQ(after_ms(1), calls{"request_tmr_2cluster 4294967295 4294967295"});
    notify_event(EV_SOFT_KEY);
    EXPECT_EQ(request_timed_tmr(2000), 1);
    EXPECT_EQ(after_ms(1000), calls{"request_tmr_2cluster 0 0"});
    EXPECT_EQ(after_ms(1000), calls{"request_tmr_2cluster 4294967295 4294967295"});

    set_lpm_mode(1, 2, 0);
    device_calls(&device);
    EXPECT_EQ(request_timed_tmr(2000), -22);
    EXPECT_EQ(infos_logged("TMR is interrupted by LPM!"), 1);
    set_lpm_mode(1, 1, 0);
    EXPECT_EQ(request_timed_tmr(2000), 0);
}

TEST_F(Thermal, LowPowerModesSettleBeforeTheyHold) {
    ASSERT_EQ(start_fps_manager(), 0);
    fps_manager_set_grant(7, 1);
    start_engine();
    const auto off = calls{"enable_thermal_config LPM_FREQ 0", "enable_thermal_config ELPM_FREQ 0"};
    EXPECT_EQ(set_lpm_mode(1, 1, 1), 0);
    EXPECT_EQ(get_lpm_mode(), 1);
    EXPECT_EQ(device_calls(&device), off);  // no cap at this level
    EXPECT_EQ(after_ms(9999), calls{});
    EXPECT_EQ(after_ms(1),
              (calls{"enable_thermal_config LPM_FREQ 1", "enable_thermal_config ELPM_FREQ 0"}));

    // Level 1 is given up for level 2 before it has settled: its timer finds nothing to do.
    set_lpm_mode(1, 1, 0);
    after_ms(5000);
    set_lpm_mode(1, 2, 1);
    EXPECT_EQ(device_calls_of(&device, "request_fps"), calls{"request_fps 30"});
    EXPECT_EQ(after_ms(29999), calls{});
    EXPECT_EQ(after_ms(1),
              (calls{"enable_thermal_config LPM_FREQ 0", "enable_thermal_config ELPM_FREQ 1"}));
    set_lpm_mode(1, 2, 0);
    EXPECT_EQ(device_calls_of(&device, "request_fps"), calls{"request_fps 60"});
    set_lpm_mode(0, 2, 1);
    EXPECT_EQ(get_lpm_mode(), 0);
    device_calls(&device);
    EXPECT_EQ(after_ms(30000), calls{});
    set_lpm_mode(1, 0, 1);
    EXPECT_EQ(get_lpm_mode(), 0);
    EXPECT_EQ(device_calls(&device), off);
}

}  // namespace
