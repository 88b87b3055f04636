// The exported file operations.
#include "core/file_util.h"

#include <gtest/gtest.h>
#include <string.h>

#include <fstream>

#include "tests/support/log_sink.h"
#include "tests/support/test_device.h"

namespace {

std::string read_all(const std::string &path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST(FileUtil, ReadsLines) {
    test_device device;
    const std::string path = device.root + "/file";
    char buffer[16] = "old";
    EXPECT_EQ(check_kernel_node(device.root.c_str()), 0);
    EXPECT_EQ(check_kernel_node(path.c_str()), -22);
    EXPECT_EQ(read_line_from_file(path.c_str(), buffer, sizeof(buffer)), -1);
    EXPECT_EQ(read_prop_from_file(path.c_str(), buffer, "x", sizeof(buffer)), -22);
    std::ofstream(path) << "";
    EXPECT_EQ(read_line_from_file(path.c_str(), buffer, sizeof(buffer)), 0);
    EXPECT_STREQ(buffer, "old");
    EXPECT_NE(read_line_from_file(device.root.c_str(), buffer, sizeof(buffer)), 0);  // a directory

    std::ofstream(path) << "one\ntwo\nthree needle\n0123456789abcdefghi-late\n";
    EXPECT_EQ(read_line_from_file(path.c_str(), buffer, sizeof(buffer)), 4);
    EXPECT_STREQ(buffer, "one\n");
    EXPECT_EQ(read_prop_from_file(path.c_str(), buffer, "needle", sizeof(buffer)), 13);
    EXPECT_STREQ(buffer, "three needle\n");
    EXPECT_EQ(read_prop_from_file(path.c_str(), buffer, "late", sizeof(buffer)), 10);
    EXPECT_STREQ(buffer, "fghi-late\n");
    EXPECT_EQ(read_prop_from_file(path.c_str(), buffer, "abcdefg", sizeof(buffer)), -22);
    EXPECT_EQ(read_prop_from_file(path.c_str(), buffer, "needle", 1), -22);
}

TEST(FileUtil, OverwritesTheStart) {
    test_device device;
    const std::string path = device.root + "/file";
    EXPECT_EQ(write_to_file(path.c_str(), "x", 1), -2);
    EXPECT_EQ(errors_logged("File [" + path + "] Open Failed : -2"), 1);
    EXPECT_EQ(write_to_file(nullptr, "x", 1), -22);
    std::ofstream(path) << "0123456789";
    EXPECT_EQ(write_to_file(path.c_str(), "abc", 3), 3);
    EXPECT_EQ(write_to_file(path.c_str(), "", 0), 0);
    EXPECT_EQ(read_all(path), "abc3456789");
    clear_log();
    EXPECT_EQ(write_to_file("/dev/full", "x", 1), -28);
    EXPECT_TRUE(logged_messages().empty());
}

}  // namespace
