// The bytes of what other services are told, and a service that hangs while two threads tell it.
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "core/event_manager.h"
#include "core/timer.h"
#include "features/dfrc_if.h"
#include "ipc/outbound/gbm_client.h"
#include "ipc/outbound/merlak_client.h"
#include "ipc/outbound/powercontrol_client.h"
#include "tests/support/fake_clock.h"
#include "tests/support/log_sink.h"
#include "tests/support/service_socket.h"
#include "tests/support/test_device.h"

namespace {

struct Services : testing::Test {
    test_device device;

    void SetUp() override {
        if (!isolate_network())
            GTEST_SKIP() << "no network namespace of one's own here";
        ASSERT_EQ(init_event_manager(), 0);
    }
};

// A message of zeros but for these texts and numbers at their offsets.
std::string bytes_of(size_t size, const std::vector<std::pair<size_t, std::string>> &texts,
                     const std::vector<std::pair<size_t, uint32_t>> &numbers) {
    std::string bytes(size, '\0');
    for (const auto &[offset, text] : texts)
        bytes.replace(offset, text.size(), text);
    for (const auto &[offset, number] : numbers)
        bytes.replace(offset, sizeof(number), reinterpret_cast<const char *>(&number),
                      sizeof(number));
    return bytes;
}

TEST_F(Services, AreToldInTheirLayouts) {
    const service_socket gbm(gbm_service);
    EXPECT_EQ(notify_floating_window_info(256), 0);
    EXPECT_EQ(gbm.take(), bytes_of(280, {{4, "Powerhal"}}, {{24, 0x2000}}));
    EXPECT_EQ(gbm_category_set(5), 0);
    EXPECT_EQ(gbm.take(), bytes_of(280, {{4, "Powerhal"}}, {{24, 0x1005}}));
    EXPECT_EQ(notify_package_name_to_gbm(std::string(300, 'n').c_str()), 0);
    EXPECT_EQ(gbm.take(),
              bytes_of(280, {{4, "package_name"}, {24, std::string(255, 'n')}}, {{0, 1}}));
    const service_socket merlak(merlak_service);
    EXPECT_EQ(request_to_merlak(10, 4), 0);
    EXPECT_EQ(merlak.take(), bytes_of(28, {{0, "merlak-client"}}, {{20, 10}, {24, 4}}));
    const service_socket hal(powercontrol_service);
    EXPECT_EQ(notify_to_framework_max_brightness(160, -1), 0);
    EXPECT_EQ(hal.take(), bytes_of(68, {{0, "dvx"}}, {{28, 160}, {32, UINT32_MAX}}));
    EXPECT_EQ(logged_messages().back().tag, "Powercontrol_Client");
}

TEST_F(Services, ThatAreDownAnswerSo) {
    gbm_category_set(5);
    EXPECT_EQ(errors_logged("Failed to connect - Connection refused"), 1);
    EXPECT_EQ(logged_messages().back().tag, "GBMv2");
    EXPECT_EQ(request_to_merlak(10, 1), -22);
    const powercontrol_message message = {};
    EXPECT_EQ(request_to_powercontrol_hal(&message), -22);
    EXPECT_EQ(logged_messages().size(), 1u);
}

TEST_F(Services, ThatHangUpAreNamed) {
    const service_socket gbm(gbm_service);
    std::atomic<bool> named = false;
    std::thread service([&] {
        while (!named)
            close(accept(gbm.fd, nullptr, nullptr));
    });
    for (int i = 0; i < 200000 && !named; ++i) {
        gbm_category_set(5);
        named = count_logged_like("GBM-Lib-Client: Unable to send request data to fd ") > 0;
    }
    EXPECT_TRUE(named);
    named = true;
    service.join();
}

// A window opens while the timer thread still tells of the close before: what is told last is true.
TEST_F(Services, HearOfTheWindowThatOpenedLast) {
    const service_socket service(gbm_service);
    listen(service.fd, 0);  // its queue is full until somebody takes what waits in it
    init_dfrc_if();
    notify_event(EV_INTERACTION);
    for (int round = 0; round < 20; ++round) {
        notify_event(EV_FLOATING_WINDOW_OFF);
        advance_clock_ms(1000);
        std::atomic<int> finished = 0;
        std::thread timer_thread([&] {
            check_expired_work();
            ++finished;
        });
        usleep(1000);
        std::thread listener([&] {
            notify_event(EV_FLOATING_WINDOW_ON);
            ++finished;
        });
        usleep(1000);
        uint32_t last = 0;
        for (bool more = true; more;) {
            const bool all_sent = finished == 2;
            const uint32_t told = service.take_message<gbm_message>().command;
            last = told != 0 ? told : last;
            more = told != 0 || !all_sent;
        }
        timer_thread.join();
        listener.join();
        ASSERT_EQ(last, 0x2001u) << "round " << round;
        notify_event(EV_INTERACTION);
    }
}

}  // namespace
