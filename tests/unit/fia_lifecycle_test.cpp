// Start, suspend and resume of the analyser.
#include "fia/lifecycle.h"

#include <gtest/gtest.h>

#include "device/virtual_device.h"
#include "fia/fbcn.h"
#include "tests/support/allocation.h"
#include "tests/support/analyser.h"
#include "tests/support/fake_thread.h"

namespace {

struct Lifecycle : Analyser {};

TEST_F(Lifecycle, WaitsForAGame) {
    set_current_window_name("game");
    play(3, 16700);
    EXPECT_EQ(fia.data->mode, fia_mode_suspended);
    EXPECT_EQ(fia.data->frame_cnt, 3);
    notify_event(EV_SCREEN_ON);
    notify_event(EV_VR_OFF);
    EXPECT_TRUE(logged_messages().empty());
    notify_event(EV_MODE_GAME_DEFAULT);
    EXPECT_EQ(infos_logged("FIA lock2 unlocked"), 1);
    EXPECT_EQ(infos_logged("Escaping Suspend mode..."), 1);
    EXPECT_EQ(device_calls(&device),
              (calls{"request_fbcn_en 1", "set_tmk_freq TMK_CLUSTER1 2803200",
                     "set_tmk_freq TMK_CLUSTER0 1766400", "set_tmk_freq TMK_GPU 710000000",
                     "request_fbcn_i_thresh 0 0"}));
    notify_event(EV_MODE_GAME_TUNER);  // resumes nothing that runs
    EXPECT_EQ(infos_logged("Escaping Suspend mode..."), 1);
}

TEST_F(Lifecycle, ResumesOnlyWhenEveryReasonIsGone) {
    const std::pair<event_id, event_id> reasons[] = {
        {EV_SCREEN_OFF, EV_SCREEN_ON},
        {EV_FLOATING_WINDOW_ON, EV_FLOATING_WINDOW_OFF},
        {EV_MODE_GAME_TUNER_EXIT, EV_MODE_GAME_DEFAULT},
        {EV_VR_ON, EV_VR_OFF},
    };
    enter("game");
    for (const auto &first : reasons)
        for (const auto &second : reasons) {
            clear_log();
            notify_event(first.first);
            notify_event(second.first);
            notify_event(first.first);
            EXPECT_EQ(infos_logged("FIA Suspended!"), 1);
            EXPECT_EQ(fia.data->mode, fia_mode_suspended);
            notify_event(first.second);
            EXPECT_EQ(infos_logged("Escaping Suspend mode..."), first == second ? 1 : 0);
            notify_event(second.second);
            notify_event(second.second);
            EXPECT_EQ(infos_logged("Escaping Suspend mode..."), 1);
            EXPECT_EQ(fia.data->mode, fia_mode_pm);
        }
}

TEST_F(Lifecycle, ScreenSwitchesReportingEveryTime) {
    enter("game");
    device_calls(&device);
    notify_event(EV_SCREEN_OFF);
    notify_event(EV_SCREEN_OFF);
    EXPECT_EQ(device_calls_of(&device, "request_fbcn"),
              (calls{"request_fbcn_i_thresh 18446744073709551615 0", "request_fbcn_en 0",
                     "request_fbcn_en 0"}));
    EXPECT_EQ(infos_logged("FIA lock0 locked"), 1);
    notify_event(EV_SCREEN_ON);
    EXPECT_EQ(device_calls_of(&device, "request_fbcn"),
              (calls{"request_fbcn_en 1", "request_fbcn_i_thresh 0 0"}));
}

TEST_F(Lifecycle, SuspendWithoutARecordKeepsTheMode) {
    enter("game");
    fia.data->cur = nullptr;
    notify_event(EV_VR_ON);
    EXPECT_EQ(infos_logged("fia_suspend: No current activity data"), 1);
    EXPECT_EQ(fia.data->mode, fia_mode_pm);
}

TEST_F(Lifecycle, ForwardsWhatItExports) {
    device_answers(&device, "request_fbcn_en", "7");
    EXPECT_EQ(request_fbcn_en(-3), 7);
    EXPECT_EQ(request_fbcn_i_thresh(UINT64_MAX, 5), 0);
    EXPECT_EQ(device_calls(&device),
              (calls{"request_fbcn_en -3", "request_fbcn_i_thresh 18446744073709551615 5"}));
}

TEST(LifecycleStart, ForwardersAnswerBeforeTheyAreBound) {
    EXPECT_EQ(request_fbcn_en(1), -22);
    EXPECT_EQ(request_fbcn_i_thresh(1, 1), -22);
    notify_fia_interval_changed(16666);
}

TEST(LifecycleStart, MissingPartsKeepItAway) {
    test_device device;
    const std::string library = device.root + "/vendor/lib64/libhwresource.so";
    ASSERT_TRUE(device_hide_symbol(library, "init_hw_fbcn_control"));
    EXPECT_EQ(init_fia(), -22);
    EXPECT_EQ(count_logged_like("Failed to dlsym init_hw_fbcn_control : "), 1);
}

TEST(LifecycleStart, NoLibraryNoThreadNoAnalyser) {
    setenv("DVXD_ROOT", "/nowhere", 1);
    EXPECT_EQ(init_fia(), -22);
    EXPECT_EQ(errors_logged("Failed to get handle for fia"), 1);
    test_device device;
    refuse_threads(true);
    EXPECT_EQ(init_fia(), -22);
    EXPECT_EQ(errors_logged("Error initializing FIA thread\n"), 1);
}

struct FailedStart : testing::Test {
    test_device device;

    void SetUp() override {
        ASSERT_EQ(init_event_manager(), 0);
        ASSERT_EQ(init_fia_clock_manager(), 0);
        ASSERT_EQ(init_fia(), 0);
        clear_log();
        device_calls(&device);
    }
};

TEST_F(FailedStart, LibraryThatRefuses) {
    device_answers(&device, "request_fbcn_en", "4");
    device_answers(&device, "request_fbcn_i_thresh", "1");
    EXPECT_EQ(fia_start_analyser(), 5);
    EXPECT_EQ(errors_logged("Failed to Initialize FIA data: 5\n"), 1);
    fia_stop_analyser();
    EXPECT_EQ(infos_logged("FIA Thread Exited.\n"), 1);
    EXPECT_EQ(device_calls(&device),
              (calls{"request_fbcn_i_thresh 0 0", "request_fbcn_en 1", "request_fbcn_en 0"}));
    notify_event(EV_MODE_GAME_DEFAULT);  // its callbacks stay and find nothing
    notify_fia_interval_changed(16666);
}

TEST_F(FailedStart, EveryAllocation) {
    std::vector<std::string> causes;
    int k = 0;
    for (;; ++k) {
        clear_log();
        fail_allocation_after(k);
        const int result = fia_start_analyser();
        if (result == 0)
            break;
        EXPECT_EQ(result, -12);
        causes.push_back(logged_messages().front().text);
        EXPECT_EQ(errors_logged("Failed to Initialize FIA data: -12\n"), 1);
        fia_stop_analyser();
    }
    fail_allocation_after(-1);
    ASSERT_EQ(k, 2 + 23 + 2 * 23 + 1);
    EXPECT_EQ(causes[0], "Failed to allocate memory for fia data\n");
    EXPECT_EQ(causes[1], "Failed to Initialize Activity Table\n");
    EXPECT_EQ(causes[24], "act[22] rsc_idx is null");
    EXPECT_EQ(causes[25], "Failed to allocate memory for pilot table\n");
    EXPECT_EQ(causes[26], "Failed to allocate memory for pilot table elements\n");
    EXPECT_EQ(causes[71], "Failed to allocate memory for fia stats\n");
}

TEST(LifecycleStart, NoClockResources) {
    test_device device;
    ASSERT_EQ(init_event_manager(), 0);
    ASSERT_EQ(init_fia(), 0);
    EXPECT_EQ(fia_start_analyser(), -22);
    EXPECT_EQ(errors_logged("act[0] rsc_max value is invalid:0"), 1);
    fia_stop_analyser();
}

}  // namespace
