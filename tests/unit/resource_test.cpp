// What no message reaches of requestors, acceptors and the image engine.
#include <gtest/gtest.h>

#include "features/automode_table.h"
#include "resource/acceptor.h"
#include "resource/fps_manager.h"
#include "resource/ie_manager.h"
#include "resource/requestor.h"
#include "simulator/allocation.h"
#include "tests/support/log_sink.h"
#include "tests/support/test_device.h"

namespace {

std::string granted;

int note_grant(int32_t requestor, int32_t grant) {
    granted += std::to_string(requestor) + "=" + std::to_string(grant) + " ";
    return 0;
}

TEST(Requestors, OfOneIdTheFirstIsAddressed) {
    EXPECT_EQ(print_resource_list(nullptr, "none"), -19);
    EXPECT_EQ(infos_logged("The list [none] is empty."), 1);
    static requestor *list = add_voter(nullptr, 9, 7);  // lists are never freed
    add_voter(list, 9, 8);
    EXPECT_EQ(requestor_request_value(list, 9, 30), 0);
    EXPECT_EQ(resource_manager_set_grant(list, 11, 1), -22);
    print_resource_list(list, "some");
    EXPECT_EQ(infos_logged("[0]: Requstor[9] Value[30] Grant[0]"), 1);
    EXPECT_EQ(infos_logged("[1]: Requstor[9] Value[8] Grant[0]"), 1);
}

TEST(Managers, AnswerWhetherTheyKnowTheRequestor) {
    const test_device device;
    EXPECT_EQ(is_fps_manager_available(), 0);
    EXPECT_EQ(requestor_request_fps(requestor_dgpc, 45), -22);
    EXPECT_EQ(requestor_request_ie(requestor_image_enhance, 1), -22);
    EXPECT_EQ(start_fps_manager(), 0);
    EXPECT_EQ(start_ie_manager(), 0);
    EXPECT_EQ(is_fps_manager_available(), 1);
    EXPECT_EQ(requestor_request_fps(requestor_dgpc, 45), 0);
    EXPECT_EQ(requestor_request_ie(requestor_image_enhance, 1), 0);
    EXPECT_EQ(fps_manager_set_grant(requestor_dgpc, 1), 0);
    EXPECT_EQ(fps_manager_set_grant(requestor_image_enhance, 1), -22);
    EXPECT_EQ(ie_manager_set_grant(requestor_image_enhance, 1), 0);
    EXPECT_EQ(ie_manager_set_grant(requestor_dgpc, 1), -22);
}

TEST(AutomodeTable, EndsAtItsLastRowAndSet) {
    uint32_t enabled = 0;
    for (uint32_t row = 0; row < automode_row_count; ++row)
        enabled += get_automode_configuration(0, row)->enabled;
    EXPECT_EQ(enabled, 3u);
    EXPECT_EQ(get_automode_configuration(0, automode_row_count), nullptr);
    EXPECT_EQ(get_automode_configuration(1, 0), nullptr);
}

TEST(Acceptors, AreNamedToTheLetterWithinTheirField) {
    const grant_change table[] = {{"fps", 1, 0}, {"fpsx", 3, 1}, {"off_image_enhancer_", 4, 1}};
    EXPECT_EQ(request_dvx_grant_change(table, 3), 0);  // nobody yet
    add_acceptor("fps", note_grant);
    add_acceptor("off_image_enhancer_and_more", note_grant);
    EXPECT_EQ(request_dvx_grant_change(table, 3), 0);
    EXPECT_EQ(granted, "1=0 4=1 ");
    // A grant that cannot be remembered is given again.
    granted.clear();
    const grant_change fresh[] = {{"fps", 6, 1}};
    fail_allocation_after(0);
    for (int i = 0; i < 3; ++i)
        request_dvx_grant_change(fresh, 1);
    EXPECT_EQ(errors_logged("Failed to alloc\n"), 1);
    EXPECT_EQ(granted, "6=1 6=1 ");
}

// States never take the image engine's grant away.
TEST(ImageEngine, ModeCountsWhileItIsGranted) {
    test_device device;
    EXPECT_EQ(requestor_request_ie(3, 1), -22);
    ASSERT_EQ(start_ie_manager(), 0);
    EXPECT_EQ(requestor_request_ie(3, 3), 0);
    EXPECT_EQ(ie_manager_set_grant(3, 1), 0);
    EXPECT_EQ(ie_manager_set_grant(3, 0), 0);
    EXPECT_EQ(ie_manager_set_grant(1, 0), -22);
    using calls = std::vector<std::string>;
    EXPECT_EQ(device_calls_of(&device, "request_image_engine_mode"),
              (calls{"request_image_engine_mode 0", "request_image_engine_mode 3",
                     "request_image_engine_mode 0"}));
}

}  // namespace
