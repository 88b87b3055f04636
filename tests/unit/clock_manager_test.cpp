// The clock manager on the stand-in library.
#include "fia/clock_manager.h"

#include <gtest/gtest.h>

#include "core/debug_gate.h"
#include "device/virtual_device.h"
#include "fia/freq_config.h"
#include "tests/support/allocation.h"
#include "tests/support/log_sink.h"
#include "tests/support/test_device.h"

namespace {

using calls = std::vector<std::string>;
using levels = std::vector<uint32_t>;

struct Clocks : testing::Test {
    test_device device;

    void start() {
        ASSERT_EQ(init_fia_clock_manager(), 0);
        debug_gate_set(true, 128);
    }

    static levels now() {
        levels present(3);
        EXPECT_EQ(fia_clock_get_freq(3, present.data()), 0);
        return present;
    }

    static int32_t set(const levels &wanted) {
        return fia_clock_set_freq(static_cast<int32_t>(wanted.size()), wanted.data());
    }
};

TEST_F(Clocks, LowerInRotationAndRiseLastInFirstOut) {
    debug_gate_set(true, 128);
    start();
    EXPECT_EQ(infos_logged("TMK_CLUSTER1 ~ TMK_GPU would be set"), 1);
    EXPECT_EQ(infos_logged("[3] 979200"), 1);
    EXPECT_EQ(fia_clock_get_freq_policy(), 3);
    ASSERT_EQ(fia_clock_clear_freq(), 0);
    device_calls(&device);
    const struct {
        int step;
        levels after;
        const char *call;
    } steps[] = {{-1, {0, 1, 0}, "set_tmk_freq TMK_CLUSTER0 1612800"},
                 {-1, {0, 1, 1}, "set_tmk_freq TMK_GPU 596000000"},
                 {-1, {1, 1, 1}, "set_tmk_freq TMK_CLUSTER1 1612800"},
                 {1, {0, 1, 1}, "set_tmk_freq TMK_CLUSTER1 2803200"},
                 {1, {0, 1, 0}, "set_tmk_freq TMK_GPU 710000000"},
                 {1, {0, 0, 0}, "set_tmk_freq TMK_CLUSTER0 1766400"}};
    for (const auto &row : steps) {
        EXPECT_EQ(fia_clock_scale_freq(row.step), 0);
        EXPECT_EQ(now(), row.after);
        EXPECT_EQ(device_calls(&device), calls{row.call});
    }
    EXPECT_EQ(fia_clock_is_maxfreq(), 1);
    EXPECT_EQ(fia_clock_scale_freq(1), 0);
    EXPECT_EQ(fia_clock_scale_freq(0), 0);
    EXPECT_EQ(infos_logged("All Max Freq"), 1);
    EXPECT_EQ(device_calls(&device), calls{});
    // Several steps in one call are single steps.
    EXPECT_EQ(fia_clock_scale_freq(-3), 0);
    EXPECT_EQ(now(), (levels{1, 1, 1}));
    EXPECT_EQ(fia_clock_scale_freq(2), 0);
    EXPECT_EQ(now(), (levels{0, 0, 1}));
    EXPECT_EQ(fia_clock_is_maxfreq(), 0);
}

TEST_F(Clocks, FirstStepWithoutSetOrClearLowersTheFirst) {
    start();
    fia_clock_scale_freq(-1);
    EXPECT_EQ(now(), (levels{1, 0, 0}));
}

TEST_F(Clocks, BudgetRefusesAndTheCursorStays) {
    start();
    EXPECT_EQ(set({4, 2, 2}), 0);
    device_calls(&device);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(fia_clock_scale_freq(-1), -22);
    EXPECT_EQ(infos_logged("cpufreq limit is too excessive"), 2);
    EXPECT_EQ(device_calls(&device), calls{});
    EXPECT_EQ(now(), (levels{4, 2, 2}));
    EXPECT_EQ(set({3, 3, 2}), 0);
    EXPECT_EQ(fia_clock_scale_freq(-1), -22);  // TMK_CLUSTER1 alone has a level left

    ASSERT_EQ(fia_clock_clear_freq(), 0);
    EXPECT_EQ(set({4, 3, 0}), -22);
    EXPECT_EQ(now(), (levels{4, 0, 0}));
}

TEST_F(Clocks, ExhaustedResourceIsPassedOver) {
    start();
    EXPECT_EQ(set({0, 3, 2}), 0);
    EXPECT_EQ(fia_clock_scale_freq(-3), 0);
    EXPECT_EQ(now(), (levels{3, 3, 2}));
    EXPECT_EQ(set({0, 0, 2}), 0);  // starts the rotation anew
    EXPECT_EQ(fia_clock_scale_freq(-1), 0);
    EXPECT_EQ(now(), (levels{0, 1, 2}));
}

TEST_F(Clocks, RefuseWhatDoesNotExist) {
    start();
    levels four(4, 9);
    EXPECT_EQ(fia_clock_get_freq(4, four.data()), -22);
    EXPECT_EQ(four, (levels{0, 0, 0, 9}));
    EXPECT_EQ(fia_clock_get_freq(0, four.data()), -22);
    EXPECT_EQ(fia_clock_get_freq(1, nullptr), -22);
    EXPECT_EQ(set({5, 0, 0}), -22);
    EXPECT_EQ(set({}), -22);
    EXPECT_EQ(set({1, 1, 1, 0}), -22);
    EXPECT_EQ(now(), (levels{1, 1, 1}));
    freq_config config = {};
    config.index = 3;
    EXPECT_EQ(get_freq_config(&config), -22);
    config.index = -1;
    EXPECT_EQ(get_freq_config(&config), -22);
    EXPECT_EQ(errors_logged("freq info index is out of bound"), 2);
    EXPECT_EQ(get_freq_config(nullptr), -14);
}

TEST_F(Clocks, LibraryThatFailsMidwayLeavesWhatItDid) {
    start();
    device_answers(&device, "set_tmk_freq.TMK_CLUSTER0", "-1");
    EXPECT_EQ(set({1, 1, 1}), -22);
    EXPECT_EQ(now(), (levels{1, 0, 0}));
    EXPECT_EQ(fia_clock_scale_freq(-2), -22);  // the cursor is at the end: CLUSTER1, then refused
    EXPECT_EQ(now(), (levels{2, 0, 0}));
    EXPECT_EQ(fia_clock_clear_freq(), -22);
    EXPECT_EQ(now(), (levels{0, 0, 0}));
    EXPECT_EQ(fia_clock_scale_freq(-1), -22);
    device_answers(&device, "set_tmk_freq.TMK_CLUSTER0", "0");
    EXPECT_EQ(fia_clock_scale_freq(-1), 0);
    EXPECT_EQ(now(), (levels{0, 1, 0}));
}

TEST_F(Clocks, WithoutTheSymbolEveryStepIsRefused) {
    ASSERT_TRUE(device_hide_symbol(device.root + "/vendor/lib64/libhwresource.so", "set_tmk_freq"));
    start();
    EXPECT_EQ(count_logged_like("Failed to dlsym set_tmk_freq : "), 1);
    EXPECT_EQ(errors_logged("Can't support thermal frequency scaling"), 1);
    EXPECT_EQ(fia_clock_clear_freq(), -22);
    EXPECT_EQ(fia_clock_scale_freq(-1), -22);
    EXPECT_EQ(set({1, 0, 0}), -22);
    EXPECT_EQ(now(), (levels{0, 0, 0}));
}

TEST_F(Clocks, WithoutALibraryItStartsAllTheSame) {
    setenv("DVXD_ROOT", "/nowhere", 1);
    EXPECT_EQ(init_fia_clock_manager(), 0);
    EXPECT_EQ(errors_logged("No handle to support thermal"), 1);
    EXPECT_EQ(errors_logged("Can't support thermal frequency scaling"), 1);
    EXPECT_EQ(fia_clock_clear_freq(), -22);
}

TEST_F(Clocks, EveryFailedAllocationLeavesAnEmptyList) {
    int k = 0;
    for (;; ++k) {
        fail_allocation_after(k);
        const int32_t result = init_fia_clock_manager();
        if (!allocation_has_failed())
            break;
        EXPECT_EQ(result, -22);
        EXPECT_EQ(fia_clock_get_freq_policy(), 0);
        EXPECT_EQ(fia_clock_is_maxfreq(), 1);
        EXPECT_EQ(fia_clock_clear_freq(), 0);
        EXPECT_EQ(fia_clock_scale_freq(-1), -22);
    }
    EXPECT_EQ(k, 12);  // four a resource
    EXPECT_EQ(errors_logged("Not enough memory"), 9);
    EXPECT_EQ(errors_logged("Not enough memory to configure freq"), 3);
    EXPECT_EQ(errors_logged("Failed to get frequency configuration"), 3);
}

}  // namespace
