// The clock manager on the stand-in library.
#include "fia/clock_manager.h"

#include <gtest/gtest.h>

#include "core/debug_gate.h"
#include "device/virtual_device.h"
#include "fia/freq_config.h"
#include "simulator/allocation.h"
#include "tests/support/log_sink.h"
#include "tests/support/memory.h"
#include "tests/support/test_device.h"

namespace {

using levels = std::vector<uint32_t>;

struct Clocks : testing::Test {
    test_device device;

    static void start() {
        debug_gate_set(true, 128);
        ASSERT_EQ(init_fia_clock_manager(), 0);
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

TEST_F(Clocks, StepsGoOnWhereTheLastOnesEnded) {
    start();
    EXPECT_EQ(infos_logged("Below Freq Supported"), 1);
    EXPECT_EQ(infos_logged("Frequncy : TMK_CLUSTER0"), 1);
    EXPECT_EQ(infos_logged("TMK_CLUSTER1 ~ TMK_GPU would be set"), 1);
    EXPECT_EQ(infos_logged("[3] 979200"), 1);
    EXPECT_EQ(fia_clock_get_freq_policy(), 3);
    EXPECT_EQ(fia_clock_scale_freq(-1), 0);  // from the last of them, before anything is set
    const struct {
        levels set;  // empty: as they are
        int step;
        int32_t answer;
        levels after;
    } steps[] = {
        {{}, 0, 0, {1, 0, 0}},           {{0, 0, 0}, -3, 0, {1, 1, 1}},
        {{}, 2, 0, {0, 1, 0}},  // last in, first out
        {{}, 3, 0, {0, 0, 0}},           {{4, 2, 2}, -1, -22, {4, 2, 2}},
        {{}, -1, -22, {4, 2, 2}},         // a refused step leaves the turn where it was
        {{3, 3, 2}, -1, -22, {3, 3, 2}},  // TMK_CLUSTER1 alone has a level left
        {{0, 3, 2}, -3, 0, {3, 3, 2}},    // what is exhausted is passed over
        {{0, 0, 2}, -1, 0, {0, 1, 2}},    // a set starts the rotation anew
    };
    for (const auto &row : steps) {
        if (!row.set.empty()) {
            ASSERT_EQ(fia_clock_clear_freq(), 0);
            EXPECT_EQ(set(row.set), 0);
        }
        EXPECT_EQ(fia_clock_scale_freq(row.step), row.answer);
        EXPECT_EQ(now(), row.after);
        EXPECT_EQ(fia_clock_is_maxfreq(), row.after == levels(3) ? 1 : 0);
    }
}

TEST_F(Clocks, RefuseWhatDoesNotExist) {
    start();
    levels four(4, 9);
    EXPECT_EQ(fia_clock_get_freq(4, four.data()), -22);
    EXPECT_EQ(four, (levels{0, 0, 0, 9}));
    EXPECT_EQ(fia_clock_get_freq(0, four.data()), -22);
    EXPECT_EQ(fia_clock_get_freq(1, four.data()), 0);
    EXPECT_EQ(fia_clock_get_freq(1, nullptr), -22);
    for (const levels &refused : {levels{5, 0, 0}, levels{}, levels{1, 1, 1, 0}})
        EXPECT_EQ(set(refused), -22);
    EXPECT_EQ(now(), (levels{1, 1, 1}));
    EXPECT_EQ(set({4, 3, 0}), -22);
    EXPECT_EQ(now(), (levels{4, 1, 1}));
    EXPECT_EQ(set({0}), 0);
    EXPECT_EQ(now(), (levels{0, 1, 1}));
    freq_config config = {};
    for (const int32_t index : {3, -1}) {
        config.index = index;
        EXPECT_EQ(get_freq_config(&config), -22);
    }
    EXPECT_EQ(errors_logged("freq info index is out of bound"), 2);
    EXPECT_EQ(get_freq_config(nullptr), -14);
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

TEST_F(Clocks, FailedStartGivesBackWhatItTook) {
    for (int k = 0; k < 12; ++k)
        EXPECT_TRUE(gives_back_what_it_takes([k] {
            fail_allocation_after(k);
            init_fia_clock_manager();
        })) << k;
}

}  // namespace
