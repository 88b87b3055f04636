// Requestors, acceptors, and the two managers on the stand-in library.
#include <gtest/gtest.h>
#include <string.h>

#include "device/virtual_device.h"
#include "resource/acceptor.h"
#include "resource/fps_manager.h"
#include "resource/hw_library.h"
#include "resource/ie_manager.h"
#include "resource/requestor.h"
#include "tests/support/allocation.h"
#include "tests/support/log_sink.h"
#include "tests/support/test_device.h"

namespace {

using calls = std::vector<std::string>;

std::string library_of(const test_device &device) {
    return device.root + "/vendor/lib64/libhwresource.so";
}

std::string granted;
int grant_result = 0;

int note_grant(int32_t requestor, int32_t grant) {
    granted += std::to_string(requestor) + "=" + std::to_string(grant) + " ";
    return grant_result;
}

TEST(Requestors, KnowOnlyTheirOwn) {
    EXPECT_EQ(print_resource_list(nullptr, "none"), -19);
    EXPECT_EQ(infos_logged("The list [none] is empty."), 1);
    static requestor *list = add_voter(nullptr, 4, -1);  // lists are never freed
    list = add_voter(list, 9, 7);
    fail_allocation_after(0);
    EXPECT_EQ(add_voter(list, 11, 0), list);
    add_voter(list, 9, 8);  // never addressed
    EXPECT_EQ(requestor_request_value(list, 9, 30), 0);
    EXPECT_EQ(resource_manager_set_grant(list, 9, 1), 0);
    EXPECT_EQ(requestor_request_value(list, 11, 30), -22);
    EXPECT_EQ(errors_logged("No such requestor [11]"), 1);
    EXPECT_EQ(resource_manager_set_grant(list, 11, 1), -22);
    clear_log();
    print_resource_list(list, "some");
    EXPECT_EQ(infos_logged("[1]: Requstor[9] Value[30] Grant[1]"), 1);
    EXPECT_EQ(infos_logged("[2]: Requstor[9] Value[8] Grant[0]"), 1);
    EXPECT_EQ(logged_messages().size(), 3u);
}

TEST(Acceptors, HearOfChangesOnly) {
    const grant_change table[] = {{"fps", 1, 0}, {"fps", 2, 1}, {"fpsx", 3, 1}, {"other", 3, 1}};
    EXPECT_EQ(request_dvx_grant_change(table, 4), 0);
    EXPECT_TRUE(logged_messages().empty());
    add_acceptor("fps", note_grant);
    add_acceptor("off_image_enhancer_and_more", note_grant);

    request_dvx_grant_change(table, 2);
    EXPECT_EQ(granted, "1=0 2=1 ");
    EXPECT_EQ(infos_logged("Grant Setting Acceptor[2] Grant[1]"), 1);
    request_dvx_grant_change(table, 2);
    EXPECT_EQ(granted, "1=0 2=1 ");
    EXPECT_EQ(infos_logged("Grant Setting Acceptor[2] Grant[1]"), 2);
    // The cache that is logged is the last node's when the last record has none: here an empty one.
    request_dvx_grant_change(table, 4);
    EXPECT_EQ(infos_logged("Grant Setting Acceptor[2] Grant[1]"), 2);

    granted.clear();
    grant_result = -1;
    const grant_change changed[] = {{"fps", 1, 1}, {"fps", 5, 1}, {"off_image_enhancer_", 3, 1}};
    request_dvx_grant_change(changed, 3);
    grant_result = 0;
    request_dvx_grant_change(changed, 3);
    request_dvx_grant_change(changed, 3);
    EXPECT_EQ(granted, "1=1 5=1 3=1 1=1 5=1 3=1 ");

    granted.clear();
    const grant_change fresh[] = {{"fps", 6, 1}};
    fail_allocation_after(0);
    request_dvx_grant_change(fresh, 1);
    EXPECT_EQ(errors_logged("Failed to alloc\n"), 1);
    request_dvx_grant_change(fresh, 1);
    EXPECT_EQ(granted, "6=1 6=1 ");
    request_dvx_grant_change(nullptr, 0);
    EXPECT_EQ(infos_logged("Grant Setting Acceptor[6] Grant[1]"), 2);
}

TEST(FrameRate, IsTheLowestThatCounts) {
    test_device device;
    ASSERT_EQ(start_fps_manager(), 0);
    EXPECT_EQ(count_logged_like("lib32: "), 1);
    EXPECT_EQ(is_fps_manager_available(), 1);
    EXPECT_EQ(requestor_request_fps(0, 30), 0);
    EXPECT_EQ(device_calls_of(&device, "request_fps"), calls{});
    EXPECT_EQ(fps_manager_set_grant(0, 1), 0);
    EXPECT_EQ(infos_logged("FM - Acceptor 0 set grant 1"), 1);
    EXPECT_EQ(infos_logged("CF30 b0"), 1);
    for (const int id : {1, 6, 7})
        fps_manager_set_grant(id, 1);

    const struct {
        int id, value;
        const char *logged;  // null: nothing changes
    } requests[] = {{0, 45, "CF45 b0"},  {6, 30, "CF30 b6"}, {6, 30, nullptr}, {6, -1, "CF45 b0"},
                    {0, 60, "CF60 b-1"}, {7, 15, nullptr},   {7, 61, nullptr}, {7, 20, "CF20 b7"},
                    {7, 0, "CF60 b-1"},  {6, 40, "CF40 b6"}, {1, 40, nullptr}};
    for (const auto &request : requests) {
        clear_log();
        requestor_request_fps(request.id, request.value);
        EXPECT_EQ(logged_messages().size(), request.logged != nullptr ? 1u : 0u) << request.value;
        if (request.logged != nullptr) {
            EXPECT_EQ(infos_logged(request.logged), 1) << request.logged;
        }
    }
    fps_manager_set_grant(6, 0);
    fps_manager_set_grant(1, 0);
    EXPECT_EQ(infos_logged("CF60 b-1"), 1);
    fps_manager_set_grant(6, 1);
    fps_manager_set_grant(1, 1);
    EXPECT_EQ(infos_logged("CF40 b6"), 1);
    EXPECT_EQ(device_calls_of(&device, "request_fps"),
              (calls{"request_fps 30", "request_fps 45", "request_fps 30", "request_fps 45",
                     "request_fps 60", "request_fps 20", "request_fps 60", "request_fps 40",
                     "request_fps 60", "request_fps 40"}));
    EXPECT_EQ(requestor_request_fps(3, 30), -22);
    EXPECT_EQ(errors_logged("No such requestor [3]"), 1);
    EXPECT_EQ(fps_manager_set_grant(3, 1), -22);
}

TEST(FrameRate, OfTwoEqualRequestsTheEarlierWins) {
    test_device device;
    ASSERT_EQ(start_fps_manager(), 0);
    for (const auto &[id, fps] : {std::pair{7, 20}, std::pair{6, 40}, std::pair{1, 40}}) {
        requestor_request_fps(id, fps);
        fps_manager_set_grant(id, 1);
    }
    requestor_request_fps(7, -1);
    EXPECT_EQ(infos_logged("CF40 b1"), 1);
}

TEST(ImageEngine, GetsItsModeOnEveryUpdate) {
    test_device device;
    EXPECT_EQ(requestor_request_ie(3, 1), -22);
    ASSERT_EQ(start_ie_manager(), 0);
    device_calls(&device);
    EXPECT_EQ(requestor_request_ie(3, 3), 0);
    device_answers(&device, "request_image_engine_mode", "-5");
    EXPECT_EQ(ie_manager_set_grant(3, 1), 0);
    EXPECT_EQ(infos_logged("IE Manager - Acceptor 3 set grant 1"), 1);
    EXPECT_EQ(requestor_request_ie(3, 3), 0);
    EXPECT_EQ(ie_manager_set_grant(3, 0), 0);
    EXPECT_EQ(ie_manager_set_grant(1, 0), -22);
    EXPECT_EQ(device_calls(&device),
              (calls{"request_image_engine_mode 0", "request_image_engine_mode 3",
                     "request_image_engine_mode 3", "request_image_engine_mode 0"}));
}

TEST(HardwareLibrary, MissingIsSaidAndLeavesNothingHalfStarted) {
    test_device device;
    unlink(library_of(device).c_str());
    EXPECT_EQ(start_fps_manager(), -22);
    EXPECT_EQ(start_ie_manager(), -22);
    EXPECT_EQ(count_logged_like("lib32: "), 2);
    EXPECT_EQ(count_logged_like("lib64: "), 2);
    EXPECT_EQ(requestor_request_fps(0, 30), -22);
    EXPECT_EQ(errors_logged("No such requestor [0]"), 1);
    update_fps_resource_state();
    EXPECT_EQ(is_fps_manager_available(), 0);
}

TEST(HardwareLibrary, EveryMissingSymbolAndFailedInitKeepsOnlyItsManagerAway) {
    test_device device;
    ASSERT_TRUE(device_hide_symbol(library_of(device), "request_fps"));
    ASSERT_TRUE(device_hide_symbol(library_of(device), "init_hw_img_enhance_engine_ctrl"));
    EXPECT_FALSE(device_hide_symbol(library_of(device), "request_fps"));
    EXPECT_EQ(start_fps_manager(), -22);
    EXPECT_EQ(count_logged_like("Failed to dlsym request_fps : "), 1);
    EXPECT_EQ(start_ie_manager(), -22);
    EXPECT_EQ(count_logged_like("Failed to dlsym init_hw_img_enhance_engine_ctrl : "), 1);
    EXPECT_EQ(errors_logged("handle already allocated"), 1);
    EXPECT_EQ(device_calls(&device), calls{});
}

TEST(HardwareLibrary, NegativeInitIsSilent) {
    test_device device;
    device_answers(&device, "init_hw_fps_control", "-1");
    device_answers(&device, "init_hw_img_enhance_engine_ctrl", "-1");
    EXPECT_EQ(start_fps_manager(), -22);
    EXPECT_EQ(start_ie_manager(), -22);
    EXPECT_EQ(logged_messages().size(), 2u);  // of opening the library
    EXPECT_EQ(is_fps_manager_available(), 0);
}

}  // namespace
