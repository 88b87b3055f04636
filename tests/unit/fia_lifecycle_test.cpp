// What the analyser exports, and its start where something fails.
#include "fia/lifecycle.h"

#include <gtest/gtest.h>

#include "device/virtual_device.h"
#include "fia/fbcn.h"
#include "simulator/allocation.h"
#include "tests/support/analyser.h"
#include "tests/support/fake_thread.h"
#include "tests/support/memory.h"

namespace {

using Lifecycle = Analyser;

TEST_F(Lifecycle, ForwardsWhatItExports) {
    device_answers(&device, "request_fbcn_en", "7");
    EXPECT_EQ(request_fbcn_en(-3), 7);
    EXPECT_EQ(request_fbcn_i_thresh(UINT64_MAX, 5), 0);
    EXPECT_EQ(device_calls(&device),
              (calls{"request_fbcn_en -3", "request_fbcn_i_thresh 18446744073709551615 5"}));
}

TEST(FailedStart, SaysItsCause) {
    const test_device device;
    ASSERT_EQ(init_event_manager(), 0);
    ASSERT_EQ(init_fia(), 0);
    EXPECT_EQ(fia_start_analyser(), -22);
    EXPECT_EQ(errors_logged("act[0] rsc_max value is invalid:0"), 1);
    fia_stop_analyser();
    ASSERT_EQ(init_fia_clock_manager(), 0);
    std::vector<std::string> causes;
    int k = 0;
    for (;; ++k) {
        clear_log();
        fail_allocation_after(k);
        const int result = fia_start_analyser();
        if (result == 0) {
            fia_stop_analyser();
            break;
        }
        EXPECT_EQ(result, -12);
        causes.push_back(logged_messages().front().text);
        EXPECT_EQ(errors_logged("Failed to Initialize FIA data: -12\n"), 1);
        fia_stop_analyser();
    }
    fail_allocation_after(-1);
    ASSERT_EQ(k, 2 + 23 + 2 * 23 + 1);
    EXPECT_TRUE(gives_back_what_it_takes([&] {
        fail_allocation_after(--k);
        fia_start_analyser();
        fia_stop_analyser();
        k = k > 0 ? k : 72;
    }));
    EXPECT_EQ(causes[0], "Failed to allocate memory for fia data\n");
    EXPECT_EQ(causes[1], "Failed to Initialize Activity Table\n");
    EXPECT_EQ(causes[24], "act[22] rsc_idx is null");
    EXPECT_EQ(causes[25], "Failed to allocate memory for pilot table\n");
    EXPECT_EQ(causes[26], "Failed to allocate memory for pilot table elements\n");
    EXPECT_EQ(causes[71], "Failed to allocate memory for fia stats\n");
}

}  // namespace
