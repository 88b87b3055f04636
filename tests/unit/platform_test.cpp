// What the daemon relies on of its platform.
#include <android/log.h>
#include <cutils/properties.h>
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <regex>
#include <thread>

#include "platform/device_root.h"
#include "platform/kernel_node.h"
#include "tests/support/test_device.h"

namespace {

// What `write` sends to standard error.
template <typename operation>
std::string captured(operation write) {
    testing::internal::CaptureStderr();
    write();
    return testing::internal::GetCapturedStderr();
}

TEST(Log, OneLineAMessageInThreadtimeForm) {
    errno = ENOTTY;
    const std::string line =
        captured([] { __android_log_print(ANDROID_LOG_INFO, "Quorvel", "CF%d b%d\n\n", 30, 6); });
    EXPECT_EQ(errno, ENOTTY);
    EXPECT_TRUE(std::regex_match(
        line, std::regex("\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3} [ \\d]{4}\\d [ \\d]{4}\\d I "
                         "Quorvel : CF30 b6\n")))
        << line;
}

TEST(Log, NewlineFromOutsideForgesNoLine) {
    const std::string text = captured([] {
        __android_log_print(ANDROID_LOG_ERROR, "Quorvel", "%s",
                            "a\n11-22 I Quorvel : forged\nb\r11-22 forged");
    });
    EXPECT_TRUE(std::regex_match(
        text, std::regex("(.* E Quorvel : a\n)(.* E Quorvel : 11-22 I Quorvel : forged\n)"
                         "(.* E Quorvel : b\\?11-22 forged\n)")))
        << text;
    const std::string newlines(2000, '\n');
    const std::string flood =
        captured([&] { __android_log_print(ANDROID_LOG_ERROR, "T", "x%sx", newlines.c_str()); });
    EXPECT_TRUE(std::regex_match(flood, std::regex(".* E T       : x\n"))) << flood;
}

TEST(Log, GoesOutInWholeLinesThatNoOtherWriteParts) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_DIRECT), 0);  // a packet a write
    const int standard_error = dup(STDERR_FILENO);
    dup2(ends[1], STDERR_FILENO);
    std::string lines;
    for (int i = 0; i < 400; ++i)
        lines += "x\n";
    __android_log_print(ANDROID_LOG_INFO, "T", "%s", lines.c_str());
    dup2(standard_error, STDERR_FILENO);
    close(ends[1]);
    int count = 0;
    char packet[PIPE_BUF + 1];
    for (ssize_t size; (size = read(ends[0], packet, sizeof(packet))) > 0;) {
        EXPECT_LE(size, PIPE_BUF);
        EXPECT_EQ(packet[size - 1], '\n');
        count += static_cast<int>(std::count(packet, packet + size, '\n'));
    }
    EXPECT_EQ(count, 400);

    // Nobody reads any more: the lines are lost, and nothing else is.
    ASSERT_EQ(pipe2(ends, 0), 0);
    close(ends[0]);
    dup2(ends[1], STDERR_FILENO);
    EXPECT_LT(__android_log_print(ANDROID_LOG_INFO, "T", "x"), 0);
    dup2(standard_error, STDERR_FILENO);
    close(ends[1]);
    close(standard_error);
}

TEST(Log, ShowsMicrosecondsWhenAsked) {
    setenv("DVXD_LOG", "usec", 1);
    const std::string line = captured([] { __android_log_print(ANDROID_LOG_INFO, "T", "x"); });
    EXPECT_TRUE(std::regex_match(line, std::regex(".*:\\d\\d\\.\\d{6} .* I T       : x\n")))
        << line;
}

TEST(Properties, AreFilesThatAreReplacedWhole) {
    test_device device;
    char value[PROPERTY_VALUE_MAX];
    EXPECT_EQ(property_get("debug.x", value, "default"), 7);
    EXPECT_EQ(property_get("debug.x", value, nullptr), 0);
    EXPECT_EQ(property_set("debug.x", "one"), 0);
    EXPECT_EQ(property_get("debug.x", value, ""), 3);
    device_set_property(&device, "debug.x", std::string(90, 'v') + "w");
    EXPECT_EQ(property_get("debug.x", value, ""), 91);
    device_set_property(&device, "debug.x", std::string(200, 'v'));
    EXPECT_EQ(property_get("debug.x", value, ""), 91);
    EXPECT_EQ(property_set("debug.x", std::string(92, 'v').c_str()), -1);
    for (const char *name : {"", "../x", "a/b", "a-name-of-more-than-thirty-one-characters"})
        EXPECT_EQ(property_set(name, "x"), -1) << name;

    // A reader never sees half of a value.
    const std::string a(80, 'a'), b(40, 'b');
    property_set("debug.x", a.c_str());
    std::thread writer([&] {
        for (int i = 0; i < 500; ++i)
            property_set("debug.x", i % 2 != 0 ? a.c_str() : b.c_str());
    });
    for (int i = 0; i < 500; ++i) {
        property_get("debug.x", value, "");
        EXPECT_TRUE(a == value || b == value) << value;
    }
    writer.join();
}

TEST(DeviceRoot, HoldsAbsolutePathsOnly) {
    char path[32];
    setenv("DVXD_ROOT", "/r", 1);
    EXPECT_EQ(device_path(path, sizeof(path), "/vendor"), 0);
    EXPECT_STREQ(path, "/r/vendor");
    EXPECT_EQ(device_path(path, sizeof(path), "libx.so"), 0);
    EXPECT_STREQ(path, "libx.so");
    EXPECT_EQ(device_path(path, sizeof(path), "/012345678901234567890123456789"), -ENAMETOOLONG);
    setenv("DVXD_ROOT", "", 1);
    EXPECT_EQ(device_path(path, sizeof(path), "/vendor"), 0);
    EXPECT_STREQ(path, "/vendor");
}

TEST(KernelNodes, ToldApartByWhatWasOpened) {
    test_device device;
    std::ofstream(device.root + "/plain") << "1\n";
    ASSERT_EQ(mkfifo((device.root + "/pipe").c_str(), 0600), 0);
    kernel_node attribute = kernel_node_open("/plain");
    kernel_node pipe = kernel_node_open("/pipe");
    EXPECT_TRUE(attribute.rewind);
    EXPECT_EQ(kernel_node_poll(&attribute).events, POLLPRI | POLLERR);
    EXPECT_FALSE(pipe.rewind);
    EXPECT_EQ(kernel_node_open("/none").fd, -1);
    char report[8];
    for (int i = 0; i < 2; ++i) {
        kernel_node_read(&attribute, report, sizeof(report));
        EXPECT_STREQ(report, "1\n");
    }
    // Neither the coming nor the going of a writer wakes anyone.
    close(open((device.root + "/pipe").c_str(), O_WRONLY));
    pollfd wait = kernel_node_poll(&pipe);
    EXPECT_EQ(poll(&wait, 1, 0), 0);
    kernel_node_close(&attribute);
    kernel_node_close(&pipe);
}

}  // namespace
