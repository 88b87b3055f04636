// Automode with rows of other kinds than the built-in ones, and the kernel node that one of them
// uses.
#include <gtest/gtest.h>

#include "core/event_manager.h"
#include "device/virtual_device.h"
#include "features/automode.h"
#include "resource/thermal_engine.h"
#include "tests/support/log_sink.h"
#include "tests/support/test_device.h"

namespace {

automode_config rows[automode_row_count];

}  // namespace

// Takes the place of the built-in table; a row of type 99 is not there.
const automode_config *get_automode_configuration(uint32_t, uint32_t row) {
    return rows[row].type == 99 ? nullptr : &rows[row];
}

namespace {

using calls = std::vector<std::string>;

struct AutomodeRows : testing::Test {
    test_device device;

    void SetUp() override { ASSERT_EQ(init_event_manager(), 0); }
};

TEST_F(AutomodeRows, ApplyInOrderThroughThermalEngineAndKernelNode) {
    rows[0] = {0, "", 20, -1, 0};  // not enabled
    rows[1] = {1, "DIM", 5, 6, 1};
    rows[2] = {2, "", 7, -8, 1};
    init_automode();
    thermal_poll poll = {};
    while (!poll_thermal_engine(&poll)) {
    }
    device_calls(&device);
    EXPECT_EQ(set_switched_automode(automode_all_on), 0);
    EXPECT_EQ(set_switched_automode(automode_touch), 0);
    EXPECT_EQ(set_switched_automode(automode_all_off), 0);
    EXPECT_EQ(
        device_calls(&device),
        (calls{"enable_thermal_config DIM 5", "set_automode_freq 7", "enable_thermal_config DIM 6",
               "enable_thermal_config DIM 6", "set_automode_freq 4294967288"}));
    EXPECT_EQ(errors_logged("0-0 is not enable"), 3);
    EXPECT_EQ(errors_logged("set_kernel_automode_freq"), 2);
}

TEST_F(AutomodeRows, KindsThatARowCannotHaveAreNamed) {
    rows[0] = {1, "", 20, -1, 1};
    rows[1] = {2, "", 72, -1, 1};
    rows[2] = {0, "", 1, 0, 1};
    init_automode();
    EXPECT_EQ(errors_logged("FPS doesn't support type : 1"), 1);
    EXPECT_EQ(errors_logged("Brightness doesn't support type : 2"), 1);
    EXPECT_EQ(errors_logged("Frequency doesn't support type : 0"), 1);
    EXPECT_EQ(infos_logged("AM0 Enabled"), 0);
    EXPECT_EQ(set_switched_automode(automode_all_on), -22);
    EXPECT_EQ(errors_logged("0-0 is not enable"), 0);
}

TEST_F(AutomodeRows, WhatTheDeviceLacksIsNamed) {
    rows[0] = {99, "", 0, 0, 1};
    rows[1] = {1, "DIM", 5, 6, 1};
    rows[2] = {2, "", 7, -8, 1};
    setenv("DVXD_ROOT", "/nowhere", 1);
    init_automode();
    const std::string blanks(31, ' ');
    EXPECT_EQ(errors_logged("This device doesn't support thermal engine." + blanks +
                            "Check Automode configurations"),
              1);
    EXPECT_EQ(errors_logged("This device doesn't support kernel node for automode." + blanks +
                            " Check Automode configurations"),
              1);
}

TEST_F(AutomodeRows, KernelNodeIsBoundAndUsed) {
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

TEST_F(AutomodeRows, KernelNodeSaysWhatIsMissing) {
    device_hide_symbol(device.root + "/vendor/lib64/libhwresource.so", "set_automode_freq");
    EXPECT_EQ(init_automode_kernel_node(), -22);
    EXPECT_EQ(count_logged_like("Failed to dlsym set_automode_freq : "), 1);
    EXPECT_EQ(infos_logged("This device doesn't support thermal engine"), 1);
}

}  // namespace
