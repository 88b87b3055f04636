// Performance profiles: the decision with a configuration of the test's own, and the library.
#include <gtest/gtest.h>

#include "context/app_context.h"
#include "core/debug_gate.h"
#include "core/event_manager.h"
#include "device/virtual_device.h"
#include "features/profile_configuration.h"
#include "features/profile_controller.h"
#include "features/profile_manager.h"
#include "simulator/allocation.h"
#include "tests/support/log_sink.h"
#include "tests/support/memory.h"
#include "tests/support/test_device.h"

namespace {

const std::string long_name(520, 'l');

int next_app = 0;
int next_prop = 0;

}  // namespace

// Takes the place of the daemon's provider, which has no entries.
int32_t get_profile_configuration_for_category(int32_t category) {
    constexpr int32_t profiles[] = {3, -1, 4, 0};
    return profiles[category];
}

int32_t get_profile_configuration_for_app(profile_app_entry *entry) {
    const profile_app_entry entries[] = {
        {"com.seven", 7}, {"com.minus", -5}, {long_name.c_str(), 8}};
    if (next_app >= 3)
        return -1;
    *entry = entries[next_app++];
    return 0;
}

int32_t get_profile_configuration_for_prop(profile_prop_entry *entry) {
    constexpr profile_prop_entry entries[] = {
        {"debug.p", "on", 1}, {"debug.q", "", 9}, {"debug.q", "on", 2}};
    if (next_prop >= 3)
        return -1;
    *entry = entries[next_prop++];
    return 0;
}

namespace {

using calls = std::vector<std::string>;

struct Profiles : testing::Test {
    test_device device;

    void SetUp() override { ASSERT_EQ(init_event_manager(), 0); }

    void start() {
        init_profile_manager_ext();
        ASSERT_EQ(init_profile_controller(), 0);
        clear_log();
    }

    calls window(const char *name) {
        set_current_window_name(name);
        notify_event(EV_WINDOW_CHANGED);
        return device_calls(&device);
    }

    calls raise(event_id event) {
        notify_event(event);
        return device_calls(&device);
    }
};

constexpr char release[] = "perf_lock_use_profile 1 -1";

TEST_F(Profiles, LaterSlotWinsAndTheOldLockGoesFirst) {
    init_profile_manager_ext();
    ASSERT_EQ(init_profile_controller(), 0);
    EXPECT_EQ(infos_logged("Profile Control : C[0](3)"), 1);
    EXPECT_EQ(infos_logged("Profile Control : A[l](8)"), 1);
    EXPECT_EQ(infos_logged("Profile Control : P[d](2)"), 1);
    debug_gate_set(true, 128);
    EXPECT_EQ(raise(EV_MODE_GAME_TUNER), calls{"perf_lock_use_profile 0 3"});
    EXPECT_EQ(raise(EV_MODE_GAME_DEFAULT), calls{});
    EXPECT_EQ(window("com.seven"), (calls{release, "perf_lock_use_profile 0 7"}));
    EXPECT_EQ(infos_logged("App Name com.seven, Prof 7"), 1);
    EXPECT_EQ(infos_logged("Profile Type:2 cleared"), 0);
    EXPECT_EQ(raise(EV_MODE_SNS), calls{});  // the app's wins
    EXPECT_EQ(window("com.minus"), (calls{release, "perf_lock_use_profile 0 4"}));
    EXPECT_EQ(infos_logged("Profile Type:2 cleared"), 1);
    EXPECT_EQ(infos_logged("Profile [7] Clear"), 1);
    EXPECT_EQ(infos_logged("Profile [4] Set"), 1);
    EXPECT_EQ(infos_logged("==> TYPE[1] : 4"), 2);
    EXPECT_EQ(raise(EV_MODE_BROWSER), calls{release});  // 0 holds nothing
    EXPECT_EQ(raise(EV_MODE_GEO), calls{});
    EXPECT_EQ(window(std::string(255, 'l').c_str()), calls{});
    device_set_property(&device, "debug.q", "on");
    EXPECT_EQ(raise(EV_APP_CHANGE), calls{"perf_lock_use_profile 0 2"});
    device_set_property(&device, "debug.p", "on");
    EXPECT_EQ(raise(EV_APP_CHANGE), (calls{release, "perf_lock_use_profile 0 1"}));
    EXPECT_EQ(infos_logged("Prop Name debug.p, Prof 1"), 1);
    device_set_property(&device, "debug.p", "");
    device_set_property(&device, "debug.q", "");
    EXPECT_EQ(raise(EV_APP_CHANGE), calls{release});  // an empty value matches nothing
}

TEST_F(Profiles, FailuresOfTheLibraryAreSaid) {
    start();
    device_answers(&device, "perf_lock_use_profile", "-1");
    raise(EV_MODE_GAME_DEFAULT);
    EXPECT_EQ(errors_logged("Failed to acquire lock for the requested profile"), 1);
    raise(EV_MODE_NONE);  // nothing was held
    EXPECT_EQ(errors_logged("Invalid profile hint ID."), 1);
    device_answers(&device, "perf_lock_use_profile", "1");
    for (int k = 0; k < 2; ++k) {
        fail_allocation_after(k);
        device_calls(&device);
        perform_hint_action_profile(5, 6);
        EXPECT_EQ(device_calls(&device), (calls{"perf_lock_use_profile 0 6", release}));
    }
    EXPECT_EQ(errors_logged("Failed to process profile hint."), 2);
    EXPECT_EQ(errors_logged("Failed to allocate hint node array"), 1);
    raise(EV_MODE_GAME_DEFAULT);
    device_answers(&device, "perf_lock_use_profile", "-1");
    raise(EV_MODE_NONE);
    EXPECT_EQ(errors_logged("Profile release failed."), 1);
    undo_hint_action_profile(0);
    EXPECT_EQ(errors_logged("Invalid profile hint ID."), 2);  // gone all the same
}

TEST_F(Profiles, HintsThatAreOverAreFreed) {
    start();
    EXPECT_TRUE(gives_back_what_it_takes([] {
        perform_hint_action_profile(5, 6);
        undo_hint_action_profile(5);
        fail_allocation_after(1);
        perform_hint_action_profile(5, 6);
    }));
}

TEST_F(Profiles, ConfigurationWithoutMemory) {
    fail_allocation_after(1);
    EXPECT_EQ(init_profile_controller(), -12);
    EXPECT_EQ(errors_logged("Memory allocation failed for pc app configuration."), 1);
    next_app = 3;
    fail_allocation_after(0);
    EXPECT_EQ(init_profile_controller(), -12);
    EXPECT_EQ(errors_logged("Memory allocation failed for pc property configuration."), 1);
    EXPECT_EQ(raise(EV_MODE_GAME_DEFAULT), calls{});
}

}  // namespace
