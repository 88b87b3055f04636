// Event manager and the gate of debug lines.
#include <gtest/gtest.h>

#include "core/debug_gate.h"
#include "core/debug_mode.h"
#include "core/event_manager.h"
#include "simulator/allocation.h"
#include "tests/support/log_sink.h"
#include "tests/support/test_device.h"

namespace {

std::string trace;

void first() {
    trace += "1";
}
void second() {
    trace += "2";
}
void nested() {
    trace += "(";
    notify_event(EV_ROTATION);
    trace += ")";
}

TEST(Events, RunInOrderOfRegistrationAndNestToTheirEnd) {
    ASSERT_EQ(init_event_manager(), 0);
    register_callback_for_event(EV_ROTATION, "b", second);
    register_callback_for_event(EV_ROTATION, "a", first);
    register_callback_for_event(EV_ROTATION, "a", first);
    register_callback_for_event(EV_AT_GALLERY_OFF, "a", first);
    register_callback_for_event(EV_AT_GALLERY_OFF, "n", nested);
    register_callback_for_event(EV_AT_GALLERY_OFF, "b", second);
    notify_event(EV_AT_GALLERY_OFF);
    notify_event(EV_STATE_IDLE);
    EXPECT_EQ(trace, "1(211)2");
    EXPECT_TRUE(logged_messages().empty());

    EXPECT_EQ(register_callback_for_event(98, "a", first), -22);
    EXPECT_EQ(errors_logged("There is no event for 98"), 1);
    fail_allocation_after(0);
    EXPECT_EQ(register_callback_for_event(EV_STATE_IDLE, "a", first), -22);
    EXPECT_EQ(errors_logged("Failed to allocated Memory"), 1);
    notify_event(EV_STATE_IDLE);
    EXPECT_EQ(trace, "1(211)2");
    EXPECT_STREQ(event_name(80), "EV_SCREEN_OFF");
    EXPECT_EQ(event_name(28), nullptr);
    EXPECT_EQ(event_name(98), nullptr);
}

struct gate_case {
    const char *enable;
    const char *mode;
    unsigned open;  // bits that are open
};

TEST(DebugMode, ReadsItsPropertiesAtStartAndWithTheScreen) {
    test_device device;
    ASSERT_EQ(init_event_manager(), 0);
    EXPECT_EQ(rtDebugMode(0), 0);
    device_set_property(&device, "debug.dvxd_log.enable", "1");
    EXPECT_EQ(init_debug_mode(), 0);
    const gate_case cases[] = {{"1", "", 255},
                               {"1", "1", 1},

                               {"1", "-129", 127},
                               {"1", "-256", 0},
                               {"1", "254", 254},
                               {"1", "255", 255},
                               {"1", "99999999999", 255},
                               {"1", "x", 0},
                               {"0", "255", 0},

                               {"", "255", 0},
                               {"-3x", "5", 5}};
    for (const gate_case &row : cases) {
        device_set_property(&device, "debug.dvxd_log.enable", row.enable);
        device_set_property(&device, "debug.dvxd_log.mode", row.mode);
        notify_event(EV_SCREEN_OFF);
        unsigned open = 0;
        for (unsigned bit = 0; bit < 10; ++bit)
            open |= rtDebugMode(bit) != 0 ? 1u << bit : 0;
        EXPECT_EQ(open, row.open) << row.enable << " " << row.mode;
    }
}

}  // namespace
