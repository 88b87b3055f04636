// Automode: commands, touches, and what the device lacks.
#include "features/automode.h"

#include <gtest/gtest.h>

#include "core/event_manager.h"
#include "core/timer.h"
#include "device/virtual_device.h"
#include "features/thermal_engine.h"
#include "ipc/powercontrol_client.h"
#include "resource/fps_manager.h"
#include "tests/support/fake_clock.h"
#include "tests/support/fake_thread.h"
#include "tests/support/log_sink.h"
#include "tests/support/service_socket.h"
#include "tests/support/test_device.h"

namespace {

using calls = std::vector<std::string>;

struct Automode : testing::Test {
    test_device device;
    std::unique_ptr<service_socket> hal;

    void SetUp() override {
        if (!isolate_network())
            GTEST_SKIP() << "no network namespace of one's own here";
        hal = std::make_unique<service_socket>(powercontrol_service);
        ASSERT_EQ(init_event_manager(), 0);
    }

    void start() {
        ASSERT_EQ(start_fps_manager(), 0);
        fps_manager_set_grant(6, 1);
        ASSERT_EQ(init_thermal_engine_support(), 0);
        thermal_poll poll = {};
        while (!poll_thermal_engine(&poll)) {
        }
        ASSERT_EQ(init_automode(), 0);
        EXPECT_EQ(infos_logged("AM0 Enabled"), 1);
        device_calls(&device);
        clear_log();
    }

    // What was asked since the last call, the brightness as "brightness N".
    calls asked() {
        calls all = device_calls(&device);
        for (std::string bytes = hal->take(); !bytes.empty(); bytes = hal->take()) {
            powercontrol_message message = {"dvx", 0, 0, 160, 0, {}};
            EXPECT_EQ(bytes.size(), sizeof(message));
            memcpy(&message.second, bytes.data() + 32, sizeof(message.second));
            EXPECT_EQ(memcmp(&message, bytes.data(), sizeof(message)), 0);
            all.push_back("brightness " + std::to_string(message.second));
        }
        return all;
    }
};

const calls all_on = {"request_fps 20", "enable_thermal_config SWAM_FREQ 1", "brightness 72"};
const calls all_off = {"request_fps 60", "enable_thermal_config SWAM_FREQ 0", "brightness -1"};
const calls lifted = {"request_fps 60", "brightness -1"};
const calls restored = {"request_fps 20", "brightness 72"};

TEST_F(Automode, CommandsApplyWhereTheyMay) {
    start();
    EXPECT_EQ(set_switched_automode(automode_touch), -125);
    EXPECT_EQ(set_switched_automode(automode_resume), -125);
    EXPECT_EQ(set_switched_automode(5), -22);
    EXPECT_EQ(set_switched_automode(UINT32_MAX), -22);
    EXPECT_EQ(errors_logged("Abnormal cmd"), 2);
    EXPECT_EQ(asked(), calls{});
    EXPECT_EQ(set_switched_automode(automode_all_on), 0);
    EXPECT_EQ(asked(), all_on);
    EXPECT_EQ(set_switched_automode(automode_game_exit), -125);
    EXPECT_EQ(asked(), calls{});
    EXPECT_EQ(set_switched_automode(automode_touch), 0);
    EXPECT_EQ(asked(), lifted);
    EXPECT_EQ(set_switched_automode(automode_touch), 0);
    EXPECT_EQ(asked(), calls{});  // nothing is left to lift
    EXPECT_EQ(set_switched_automode(automode_resume), 0);
    EXPECT_EQ(asked(), restored);
    EXPECT_EQ(set_switched_automode(automode_all_off), 0);
    EXPECT_EQ(asked(), all_off);
    notify_event(EV_MODE_GAME_DEFAULT_EXIT);  // sends the off values again
    EXPECT_EQ(asked(), (calls{"enable_thermal_config SWAM_FREQ 0", "brightness -1"}));
}

TEST_F(Automode, CapsComeBackEightSecondsAfterTheLastTouch) {
    start();
    notify_event(EV_INTERACTION);
    advance_clock_ms(9000);
    EXPECT_EQ(check_expired_work(), 0);
    EXPECT_EQ(asked(), calls{});
    set_switched_automode(automode_all_on);
    asked();
    notify_event(EV_INTERACTION);
    EXPECT_EQ(asked(), lifted);
    advance_clock_ms(5000);
    notify_event(EV_INTERACTION);
    advance_clock_ms(7999);
    EXPECT_EQ(check_expired_work(), 1);
    EXPECT_EQ(asked(), calls{});
    advance_clock_ms(1);
    EXPECT_EQ(check_expired_work(), 0);
    EXPECT_EQ(asked(), restored);
    // Switched off while the caps are lifted: the timer finds nothing to bring back.
    notify_event(EV_INTERACTION);
    set_switched_automode(automode_all_off);
    asked();
    advance_clock_ms(8000);
    check_expired_work();
    EXPECT_EQ(asked(), calls{});
}

TEST_F(Automode, TouchWithoutATimerLiftsNothing) {
    start();
    set_switched_automode(automode_all_on);
    asked();
    refuse_threads(true);
    notify_event(EV_INTERACTION);
    EXPECT_EQ(errors_logged("Failed to get Timer"), 1);
    EXPECT_EQ(asked(),
              (calls{"request_fps 60", "request_fps 20", "brightness -1", "brightness 72"}));
}

TEST_F(Automode, RowsThatTheDeviceLacksAreNamedOnEverySwitch) {
    setenv("DVXD_ROOT", "/nowhere", 1);
    init_automode();
    const std::string blanks(31, ' ');
    EXPECT_EQ(errors_logged("This device doesn't support fps internally." + blanks +
                            "Check Automode configurations"),
              1);
    EXPECT_EQ(errors_logged("This device doesn't support thermal engine." + blanks +
                            " Check Automode configurations"),
              1);
    EXPECT_EQ(set_switched_automode(automode_all_on), 0);
    EXPECT_EQ(hal->take_message<powercontrol_message>().second, 72);
    EXPECT_EQ(errors_logged("0-0 is not enable"), 1);
    EXPECT_EQ(errors_logged("0-2 is not enable"), 1);
    EXPECT_EQ(set_switched_automode(automode_touch), 0);
    EXPECT_EQ(set_switched_automode(automode_touch), -125);
    EXPECT_EQ(errors_logged("0-0 is not enable"), 2);
}

TEST_F(Automode, KernelNodeIsBoundAndUsed) {
    EXPECT_EQ(set_kernel_automode_freq(7), -22);
    EXPECT_EQ(errors_logged("set_kernel_automode_freq"), 1);
    device_answers(&device, "init_automode_node", "3");
    EXPECT_EQ(init_automode_kernel_node(), 3);
    EXPECT_EQ(set_kernel_automode_freq(7), -22);
    device_answers(&device, "init_automode_node", "0");
    EXPECT_EQ(init_automode_kernel_node(), 0);
    EXPECT_EQ(init_automode_kernel_node(), 0);
    device_answers(&device, "set_automode_freq", "9");
    EXPECT_EQ(set_kernel_automode_freq(UINT32_MAX), 9);
    EXPECT_EQ(device_calls(&device),
              (calls{"init_automode_node", "init_automode_node", "set_automode_freq 4294967295"}));
}

TEST_F(Automode, KernelNodeSaysWhatIsMissing) {
    device_hide_symbol(device.root + "/vendor/lib64/libhwresource.so", "set_automode_freq");
    EXPECT_EQ(init_automode_kernel_node(), -22);
    EXPECT_EQ(count_logged_like("Failed to dlsym set_automode_freq : "), 1);
    EXPECT_EQ(infos_logged("This device doesn't support thermal engine"), 1);
}

}  // namespace
