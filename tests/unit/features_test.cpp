// What no message reaches of the features: what their starts and requests answer, triggers that are
// queued before the start, two kinds of app in front at once, a tuner's target that is cleared,
// texts that nobody has ended.
#include <cutils/properties.h>
#include <gtest/gtest.h>

#include "client/dvx_client.h"
#include "context/activity_trigger.h"
#include "context/app_context.h"
#include "core/debug_gate.h"
#include "core/debug_mode.h"
#include "core/event_manager.h"
#include "features/automode.h"
#include "features/dfrc_if.h"
#include "features/event_trigger.h"
#include "features/image_enhance_controller.h"
#include "features/low_power_mode.h"
#include "features/merlak_if.h"
#include "features/osprin_if.h"
#include "features/profile_controller.h"
#include "features/property_worker.h"
#include "features/thermal_control.h"
#include "ipc/client_handlers.h"
#include "resource/fps_manager.h"
#include "resource/game_tuner.h"
#include "simulator/allocation.h"
#include "tests/support/log_sink.h"
#include "tests/support/test_device.h"

namespace {

TEST(Features, AnswerWhetherTheyApply) {
    test_device device;
    ASSERT_EQ(init_event_manager(), 0);
    EXPECT_EQ(decide_osprin_state(30, 1), -22);
    EXPECT_EQ(set_switched_automode(automode_all_on), -22);
    EXPECT_EQ(set_lpm_mode(1, 2, 1), 0);
    for (int (*init)(void) :
         {start_fps_manager, init_dfrc_if, init_merlak_if, init_image_enhance_controller,
          init_fevent_monitor, init_activity_trigger, init_profile_controller, init_ts,
          init_debug_mode, init_property_worker, init_osprin_if, init_automode})
        EXPECT_EQ(init(), 0);
    ie_config entry;
    EXPECT_EQ(get_ie_configuration(&entry), -1);
    init_lpm_config();
    EXPECT_EQ(set_lpm_mode(1, 2, 1), 0);
    EXPECT_EQ(get_lpm_mode(), 2);
    EXPECT_EQ(set_switched_automode(automode_touch), -ECANCELED);
    EXPECT_EQ(set_switched_automode(automode_all_on), 0);
    EXPECT_EQ(set_switched_automode(automode_touch), 0);
    EXPECT_EQ(set_switched_automode(automode_game_exit), -ECANCELED);
    EXPECT_EQ(set_switched_automode(5), -22);
    device_answers(&device, "set_osprin_gov_state", "7");
    EXPECT_EQ(decide_osprin_state(30, 1), 7);
    device_answers(&device, "init_hw_osprin_control", "-4");
    EXPECT_EQ(decide_osprin_state(30, 1), -4);
}

TEST(Features, QueuedTriggersAreRegisteredLast) {
    static std::string ran;
    ASSERT_EQ(init_event_manager(), 0);
    debug_gate_set(true, 255);
    EXPECT_EQ(init_event_trigger(), 0);
    EXPECT_TRUE(logged_messages().empty());
    EXPECT_EQ(queue_event_trigger(EV_ROTATION, [] { ran += "a"; }), 0);
    queue_event_trigger(EV_ROTATION, [] { ran += "b"; });
    fail_allocation_after(0);
    EXPECT_EQ(queue_event_trigger(EV_ROTATION, [] { ran += "x"; }), -12);
    register_callback_for_event(EV_ROTATION, "early", [] { ran += "0"; });
    init_event_trigger();
    init_event_trigger();
    notify_event(EV_ROTATION);
    EXPECT_EQ(ran, "0ab");
    EXPECT_EQ(infos_logged("EVT 14 registered"), 2);
    EXPECT_EQ(infos_logged("CB[EVT] is registered for EV[14]"), 2);
}

// A navigation app and a game, in both of its modes, may be in front at once.
TEST(Features, ModePropertyPrefersTheGame) {
    test_device device;
    ASSERT_EQ(init_event_manager(), 0);
    init_property_worker();
    std::string published;  // after each event; '-': nothing
    const auto note = [&] {
        char value[PROPERTY_VALUE_MAX];
        property_get("sys.zuv.vtmode", value, "none");
        property_set("sys.zuv.vtmode", "-");
        published += value;
    };
    note();
    for (const event_id event :
         {EV_MODE_GEO_EXIT, EV_MODE_GAME_DEFAULT, EV_MODE_GAME_DEFAULT, EV_MODE_GEO, EV_MODE_GEO,
          EV_MODE_GAME_TUNER, EV_MODE_GAME_DEFAULT_EXIT, EV_MODE_GAME_TUNER_EXIT,
          EV_MODE_GAME_TUNER_EXIT, EV_MODE_GEO_EXIT, EV_MODE_GEO, EV_MODE_GAME_TUNER,
          EV_MODE_GEO_EXIT, EV_MODE_GAME_TUNER_EXIT}) {
        notify_event(event);
        note();
    }
    EXPECT_EQ(published, "0-1-1---2-02110");
}

TEST(Features, TunersTargetEndsWithTheTunedGame) {
    test_device device;
    ASSERT_EQ(init_event_manager(), 0);
    ASSERT_EQ(start_fps_manager(), 0);
    EXPECT_EQ(fps_manager_set_grant(1, 1), 0);
    set_game_tuner_policy(1);
    set_game_tuner_mode(1);
    EXPECT_EQ(set_game_mode(1, 45), 0);
    set_game_mode(1, 61);  // no rate for the tuner
    cb_set_requested_fps();
    EXPECT_EQ(count_logged_like("CF45"), 0);
}

// The payload of a client that has filled it to its last byte.
TEST(Features, TextWithoutAnEndIsCut) {
    ASSERT_EQ(init_event_manager(), 0);
    const std::string endless(DVX_PAYLOAD_SIZE, 'w');
    handler_powerhal_callback(DVX_CODE_WINDOW, endless.data());
    handler_powerhal_callback(DVX_CODE_APP, endless.data());
    handler_powerhal_callback(DVX_CODE_HOME, ("1:" + endless).data());
    for (const char *name : {get_current_window_name(), get_current_activity_name()})
        EXPECT_EQ(name, std::string(255, 'w'));
    EXPECT_EQ(get_home_activity_name(), std::string(253, 'w'));
    handler_powerhal_callback(DVX_CODE_HOME,
                              std::string("::").append(254, 0).data());  // no state: home is left
    EXPECT_STREQ(get_home_activity_name(), "::");
    handler_powerhal_callback(DVX_CODE_ACTIVITY, endless.data());
    EXPECT_EQ(get_full_activity_name(), std::string(255, 'w'));
}

}  // namespace
