// What other services are told: the frame-rate bridge, merlak, and osprin in the library.
#include <gtest/gtest.h>

#include "context/app_context.h"
#include "core/event_manager.h"
#include "core/timer.h"
#include "device/virtual_device.h"
#include "features/dfrc_if.h"
#include "features/merlak_if.h"
#include "features/osprin_if.h"
#include "ipc/gbm_client.h"
#include "ipc/merlak_client.h"
#include "ipc/powercontrol_client.h"
#include "tests/support/fake_clock.h"
#include "tests/support/log_sink.h"
#include "tests/support/service_socket.h"
#include "tests/support/test_device.h"

namespace {

using calls = std::vector<std::string>;

struct Bridge : testing::Test {
    test_device device;

    void SetUp() override {
        if (!isolate_network())
            GTEST_SKIP() << "no network namespace of one's own here";
        ASSERT_EQ(init_event_manager(), 0);
    }
};

TEST_F(Bridge, ForwardsEachEventAsOneCommand) {
    const service_socket service(gbm_service);
    init_dfrc_if();
    const std::pair<event_id, uint32_t> commands[] = {
        {EV_INTERACTION, 0x100},
        {EV_ROTATION, 0x103},
        {EV_FPS_LOCK, 0x101},
        {EV_FPS_UNLOCK, 0x102},
        {EV_APP_CHANGE, 0x200},
        {EV_GAME_OPTIMIZER_ENABLE, 0x301},
        {EV_GAME_OPTIMIZER_DISABLE, 0x300},
        {EV_OFMODE_SET, 0x401},
        {EV_OFMODE_RELEASE, 0x400},
        {EV_MODE_NONE, 0x1000},
        {EV_MODE_GEO, 0x1001},
        {EV_MODE_BROWSER, 0x1002},
        {EV_MODE_SNS, 0x1003},
        {EV_MODE_GAME_DEFAULT, 0x1005},
        {EV_FLOATING_WINDOW_ON, 0x2001},
    };
    for (const auto &[event, command] : commands) {
        notify_event(event);
        std::string expected(sizeof(gbm_message), '\0');
        expected.replace(4, 8, "Powerhal");
        expected[24] = static_cast<char>(command & 255);
        expected[25] = static_cast<char>(command >> 8);
        EXPECT_EQ(service.take(), expected) << command;
        EXPECT_EQ(service.take(), "");
    }
    notify_event(EV_MODE_GAME_TUNER);
    EXPECT_EQ(service.take(), "");
    notify_floating_window_info(256);
    EXPECT_EQ(service.take_message<gbm_message>().command, 0x2000u);
}

TEST_F(Bridge, SendsTheWindowsNameCut) {
    const service_socket service(gbm_service);
    notify_package_name_to_gbm(std::string(300, 'n').c_str());
    const gbm_message message = service.take_message<gbm_message>();
    EXPECT_EQ(message.type, 1);
    EXPECT_STREQ(message.tag, "package_name");
    EXPECT_EQ(message.package, std::string(255, 'n'));
    init_dfrc_if();
    set_current_window_name("com.example");
    notify_event(EV_WINDOW_CHANGED);
    EXPECT_STREQ(service.take_message<gbm_message>().package, "com.example");
}

TEST_F(Bridge, ClosedWindowIsToldOnlyWhenItStaysClosed) {
    const service_socket service(gbm_service);
    init_dfrc_if();
    notify_event(EV_FLOATING_WINDOW_OFF);
    advance_clock_ms(600);
    notify_event(EV_FLOATING_WINDOW_OFF);
    advance_clock_ms(600);
    check_expired_work();
    EXPECT_EQ(service.take(), "");
    advance_clock_ms(400);
    check_expired_work();
    EXPECT_EQ(service.take_message<gbm_message>().command, 0x2000u);

    notify_event(EV_FLOATING_WINDOW_OFF);
    advance_clock_ms(300);
    notify_event(EV_FLOATING_WINDOW_ON);
    EXPECT_EQ(service.take_message<gbm_message>().command, 0x2001u);
    advance_clock_ms(5000);
    check_expired_work();
    EXPECT_EQ(service.take(), "");
}

TEST_F(Bridge, ServiceThatIsDownCostsItsLineAlone) {
    gbm_category_set(5);
    notify_package_name_to_gbm("x");
    EXPECT_EQ(errors_logged("Failed to connect - Connection refused"), 2);
    EXPECT_EQ(logged_messages()[0].tag, "GBMv2");
    clear_log();
    EXPECT_EQ(request_to_merlak(10, 1), -22);
    const powercontrol_message message = {};
    EXPECT_EQ(request_to_powercontrol_hal(&message), -22);
    EXPECT_TRUE(logged_messages().empty());
    EXPECT_EQ(notify_to_framework_max_brightness(160, -1), 0);
    EXPECT_EQ(infos_logged("Notify Brightness 160:-1"), 1);
    EXPECT_EQ(logged_messages()[0].tag, "Powercontrol_Client");
}

TEST_F(Bridge, MerlakHearsOfGamesAndTheirRate) {
    const service_socket service(merlak_service);
    init_merlak_if();
    const auto value = [&] {
        const merlak_message message = service.take_message<merlak_message>();
        EXPECT_STREQ(message.sender, "merlak-client");
        EXPECT_EQ(message.command, 10u);
        return message.value;
    };
    for (const auto &[event, expected] :
         {std::pair{EV_MODE_GAME_DEFAULT, 3u}, std::pair{EV_MODE_GAME_TUNER, 3u},
          std::pair{EV_MODE_GAME_DEFAULT_EXIT, 4u}, std::pair{EV_MODE_GAME_TUNER_EXIT, 4u},
          std::pair{EV_APP_CHANGE, 2u}}) {
        notify_event(event);
        EXPECT_EQ(value(), expected);
    }
    for (const auto &[fps, expected] :
         {std::pair{30u, 0u}, std::pair{31u, 1u}, std::pair{static_cast<uint32_t>(-1), 1u}}) {
        EXPECT_EQ(decide_merlak_state_by_ofmode(fps, 1), 0);
        EXPECT_EQ(value(), expected);
    }
}

TEST_F(Bridge, OsprinInitialisesBeforeEveryRequest) {
    EXPECT_EQ(decide_osprin_state(30, 1), -22);
    ASSERT_EQ(init_osprin_if(), 0);
    device_calls(&device);
    notify_event(EV_MODE_GAME_TUNER);
    notify_event(EV_MODE_GAME_DEFAULT_EXIT);
    device_answers(&device, "set_osprin_gov_state", "6");
    EXPECT_EQ(decide_osprin_state(30, 1), 6);
    decide_osprin_state(60, 1);
    decide_osprin_state(30, 0);
    decide_osprin_state(static_cast<uint32_t>(-1), 1);
    EXPECT_EQ(
        device_calls(&device),
        (calls{"init_hw_osprin_control", "request_osprin_control 1", "init_hw_osprin_control",
               "request_osprin_control 0", "init_hw_osprin_control", "set_osprin_gov_state 0",
               "init_hw_osprin_control", "set_osprin_gov_state 1", "init_hw_osprin_control",
               "set_osprin_gov_state 1", "init_hw_osprin_control", "set_osprin_gov_state 1"}));
    device_answers(&device, "init_hw_osprin_control", "-4");
    EXPECT_EQ(decide_osprin_state(30, 1), -4);
    EXPECT_EQ(device_calls(&device), calls{"init_hw_osprin_control"});
}

TEST_F(Bridge, OsprinWithoutASymbolRegistersNothing) {
    device_hide_symbol(device.root + "/vendor/lib64/libhwresource.so", "set_osprin_gov_state");
    EXPECT_EQ(init_osprin_if(), -22);
    EXPECT_EQ(count_logged_like("Failed to dlsym set_osprin_gov_state : "), 1);
    notify_event(EV_MODE_GAME_DEFAULT);
    EXPECT_EQ(decide_osprin_state(30, 1), -22);
    EXPECT_EQ(device_calls(&device), calls{});
}

}  // namespace
