// What no message reaches of the thermal engine and of those who switch it: who asks before it is
// set up, and a level of low power that is left while its expiry action runs.
#include <gtest/gtest.h>
#include <unistd.h>

#include <thread>

#include "core/event_manager.h"
#include "core/timer.h"
#include "device/virtual_device.h"
#include "features/custom_config.h"
#include "features/low_power_mode.h"
#include "features/timed_mitigation.h"
#include "resource/thermal_engine.h"
#include "tests/support/fake_clock.h"
#include "tests/support/log_sink.h"
#include "tests/support/test_device.h"

namespace {

using calls = std::vector<std::string>;

TEST(Thermal, WhoAsksTooEarlyIsRefused) {
    test_device device;
    EXPECT_EQ(enable_thermal_config("X", 1), -22);
    EXPECT_EQ(errors_logged("Thermal Interface is not initialized. Init it first."), 1);
    EXPECT_EQ(init_thermal_engine_support(), 0);
    EXPECT_EQ(enable_thermal_config("X", 1), -16);
    EXPECT_EQ(set_custom_config("a"), -22);
    EXPECT_EQ(errors_logged("dlsym not finished!\n"), 1);
    EXPECT_EQ(request_timed_tmr(100), -22);
    EXPECT_EQ(infos_logged("TMR is not activated."), 1);
    cb_tmr_release();
    EXPECT_EQ(device_calls(&device), calls{"request_tmr_single_cluster 4294967295"});
}

TEST(Thermal, TwoClustersHaveAValueEach) {
    test_device device;
    EXPECT_EQ(get_lpm_mode(), 0);
    activate_tmr_2cluster(3, 4);
    EXPECT_EQ(request_timed_tmr(100), 0);
    EXPECT_EQ(request_timed_tmr(50), 1);
    EXPECT_EQ(device_calls(&device), calls{"request_tmr_2cluster 3 4"});
}

TEST(Thermal, CustomConfigurationFailsForNoActivity) {
    test_device device;
    ASSERT_EQ(init_thermal_engine_support(), 0);
    ASSERT_EQ(custom_config_init(), 0);
    device_answers(&device, "get_custom_config.a", "TCONF_ENABLE ONE");
    device_answers(&device, "get_custom_config.b", "OTHER THING");
    for (const char *activity : {"none", "a", "b", "a", "none"})
        EXPECT_EQ(set_custom_config(activity), 0) << activity;
    EXPECT_EQ(infos_logged("config set failed : TCONF_ENABLE, ONE\n"), 2);  // not loaded yet
    device_answers(&device, "init_white_list", "0");
    EXPECT_EQ(custom_config_init(), -1);
}

TEST(Thermal, EngineIsWaitedForFiveMinutes) {
    test_device device;
    ASSERT_EQ(init_thermal_engine_support(), 0);
    device_answers(&device, "get_num_of_thermal_config_desc", "0");
    let_sleep_move_clock();
    const int64_t start_ms = get_current_monotonic_ms();
    do_check_thermal_engine_activation(nullptr);
    EXPECT_EQ(get_current_monotonic_ms() - start_ms, 300000);
    EXPECT_EQ(device_calls(&device).size(), 300u);
}

// The library is slow once: level 2 is left while its expiry action is between the two switches.
TEST(Thermal, LevelThatIsLeftStaysOff) {
    test_device device;
    ASSERT_EQ(init_event_manager(), 0);
    init_lpm_config();
    thermal_poll poll = {};
    while (!poll_thermal_engine(&poll)) {
    }
    set_lpm_mode(1, 2, 0);
    device_calls(&device);
    device_answers(&device, "enable_thermal_config.delay_ms", "100");
    advance_clock_ms(30000);
    std::thread timer_thread(check_expired_work);
    while (device_calls(&device).empty())
        std::this_thread::yield();
    usleep(20000);
    device_answers(&device, "enable_thermal_config.delay_ms", "0");
    set_lpm_mode(0, 0, 0);
    timer_thread.join();
    EXPECT_EQ(device_calls(&device).back(), "enable_thermal_config ELPM_FREQ 0");
}

}  // namespace
