// The activity trigger, the image-enhance controller, the property worker, the event trigger.
#include <cutils/properties.h>
#include <gtest/gtest.h>

#include "context/activity_trigger.h"
#include "context/app_context.h"
#include "context/app_tables.h"
#include "core/debug_gate.h"
#include "core/event_manager.h"
#include "features/event_trigger.h"
#include "features/image_enhance_controller.h"
#include "features/property_worker.h"
#include "resource/ie_manager.h"
#include "tests/support/allocation.h"
#include "tests/support/log_sink.h"
#include "tests/support/recorder.h"
#include "tests/support/test_device.h"

namespace {

using calls = std::vector<std::string>;
using ids = std::vector<int>;

struct Recognition : testing::Test {
    test_device device;

    void SetUp() override { ASSERT_EQ(init_event_manager(), 0); }
};

TEST_F(Recognition, WindowsOfKnownAppsRaiseTheirCategory) {
    ASSERT_EQ(init_activity_trigger(), 0);
    EXPECT_EQ(count_logged_like("Activity Trigger : A["), 25);
    record_events();
    debug_gate_set(true, 128);
    const struct {
        const char *window;
        ids raised;
    } windows[] = {{"com.android.chrome", {92}},
                   {"com.android.chrome", {93, 92}},  // stays in front
                   {"com.kakao.talk", {93, 94}},
                   {"com.kakao.talk/.Chat", {95}},
                   {"com.kakao.tal", {}},
                   {"com.zuv.tdmb", {16}},
                   {"com.locnall.KimGiSa", {17, 90}},
                   {"com.android.gallery3d", {91, 96}},
                   {"com.google.android.youtube", {97, 94}},
                   {"", {95}}};
    for (const auto &row : windows) {
        set_current_window_name(row.window);
        notify_event(EV_WINDOW_CHANGED);
        ids raised = take_raised();
        ASSERT_EQ(raised.back(), 12);
        raised.pop_back();
        EXPECT_EQ(raised, row.raised) << row.window;
    }
    EXPECT_EQ(infos_logged("Clear of callback for com.kakao.talk"), 1);
    at_entry entry;
    EXPECT_EQ(get_at_configuration_for_app(&entry), -1);
}

TEST_F(Recognition, TriggerWithoutMemoryIsNotThere) {
    fail_allocation_after(13);
    EXPECT_EQ(init_activity_trigger(), -12);
    EXPECT_EQ(errors_logged("Memory allocation failed for activity trigger configuration."), 1);
    record_events();
    set_current_window_name("com.android.chrome");
    notify_event(EV_WINDOW_CHANGED);
    EXPECT_EQ(take_raised(), ids{12});
}

TEST_F(Recognition, ImageEngineFollowsTheModesThatHaveOne) {
    ASSERT_EQ(start_ie_manager(), 0);
    ie_manager_set_grant(3, 1);
    ASSERT_EQ(init_image_enhance_controller(), 0);
    EXPECT_EQ(infos_logged("extend ie config init: event 42/0"), 1);
    EXPECT_EQ(infos_logged("extend ie config next: event 58/3"), 1);
    device_calls(&device);
    for (const event_id event : {EV_MODE_GALLERY, EV_MODE_BROWSER, EV_VIDEO_DECODE_ON, EV_MODE_GEO,
                                 EV_MODE_GAME_TUNER, EV_MODE_GAME_DEFAULT, EV_MODE_NONE})
        notify_event(event);
    EXPECT_EQ(device_calls(&device),
              (calls{"request_image_engine_mode 3", "request_image_engine_mode 1",
                     "request_image_engine_mode 1", "request_image_engine_mode 0"}));
    EXPECT_EQ(errors_logged("found 58, mode set to 3\n"), 1);
}

struct WithoutMemory : Recognition, testing::WithParamInterface<int> {};

TEST_P(WithoutMemory, ImageEngineFollowsGrantsOnly) {
    fail_allocation_after(GetParam());
    EXPECT_EQ(init_image_enhance_controller(), -12);
    EXPECT_EQ(errors_logged(GetParam() == 0 ? "Memory allocation failed for ie config."
                                            : "Memory allocation failed for ie_config_node."),
              1);
    notify_event(EV_MODE_GALLERY);
    EXPECT_EQ(count_logged_like("found"), 0);
}

INSTANTIATE_TEST_SUITE_P(Allocations, WithoutMemory, testing::Values(0, 1, 4));

TEST_F(Recognition, ModePropertyPrefersTheGame) {
    init_property_worker();
    const auto published = [] {
        static char value[PROPERTY_VALUE_MAX];
        property_get("sys.zuv.vtmode", value, "none");
        property_set("sys.zuv.vtmode", "-");  // shows what is written next
        return std::string(value);
    };
    EXPECT_EQ(published(), "0");
    const std::pair<event_id, const char *> changes[] = {
        {EV_MODE_GEO_EXIT, "-"},
        {EV_MODE_GAME_DEFAULT, "1"},
        {EV_MODE_GAME_DEFAULT, "-"},
        {EV_MODE_GEO, "1"},
        {EV_MODE_GEO, "-"},
        {EV_MODE_GAME_TUNER, "-"},
        {EV_MODE_GAME_DEFAULT_EXIT, "-"},
        {EV_MODE_GAME_TUNER_EXIT, "2"},
        {EV_MODE_GAME_TUNER_EXIT, "-"},
        {EV_MODE_GEO_EXIT, "0"},
        {EV_MODE_GEO, "2"},
        {EV_MODE_GAME_TUNER, "1"},
        {EV_MODE_GEO_EXIT, "1"},
        {EV_MODE_GAME_TUNER_EXIT, "0"},
    };
    for (const auto &[event, value] : changes) {
        notify_event(event);
        EXPECT_EQ(published(), value) << event;
    }
}

TEST_F(Recognition, QueuedTriggersAreRegisteredLast) {
    static std::string ran;
    EXPECT_EQ(init_event_trigger(), 0);
    EXPECT_TRUE(logged_messages().empty());
    queue_event_trigger(EV_ROTATION, [] { ran += "a"; });
    queue_event_trigger(EV_ROTATION, [] { ran += "b"; });
    fail_allocation_after(0);
    EXPECT_EQ(queue_event_trigger(EV_ROTATION, [] { ran += "x"; }), -12);
    register_callback_for_event(EV_ROTATION, "early", [] { ran += "0"; });
    init_event_trigger();
    init_event_trigger();
    notify_event(EV_ROTATION);
    EXPECT_EQ(ran, "0ab");
    EXPECT_EQ(infos_logged("EVT 14 registered"), 2);
}

}  // namespace
