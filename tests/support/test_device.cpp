#include "tests/support/test_device.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "device/virtual_device.h"
#include "tools/base/files.h"

test_device::test_device() {
    char name[] = "/tmp/dvx-test-XXXXXX";
    root = mkdtemp(name);
    const std::string error = device_create(root, built("device"));
    EXPECT_EQ(error, "");
    // Tests say themselves what they want logged.
    std::filesystem::remove(root + "/properties/debug.dvxd_log.enable");
    setenv("DVXD_ROOT", root.c_str(), 1);
}

test_device::~test_device() {
    std::error_code error;
    std::filesystem::remove_all(root, error);
}

std::vector<std::string> device_calls(test_device *device) {
    std::vector<std::string> calls;
    for (const std::string &line :
         read_lines(device->root + device_calls_log, &device->calls_offset)) {
        const size_t thread = line.find(' ');
        calls.push_back(line.substr(line.find(' ', thread + 1) + 1));
    }
    return calls;
}

std::vector<std::string> device_calls_of(test_device *device, const std::string &start) {
    std::vector<std::string> calls = device_calls(device);
    std::erase_if(calls, [&](const std::string &call) { return !call.starts_with(start); });
    return calls;
}

void device_answers(const test_device *device, const std::string &name, const std::string &value) {
    device_set_answer(device->root, name, value);
}

void device_set_property(const test_device *device, const std::string &name,
                         const std::string &value) {
    std::ofstream(device->root + "/properties/" + name) << value << "\n";
}

std::string built(const std::string &path) {
    const char *build = getenv("DVX_BUILD");
    return std::string(build != nullptr ? build : ".") + "/" + path;
}

bool isolate_network(void) {
    return unshare(geteuid() == 0 ? CLONE_NEWNET : CLONE_NEWUSER | CLONE_NEWNET) == 0;
}
