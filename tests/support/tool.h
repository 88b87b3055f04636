// dvxctl as a person runs it.
#pragma once

#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/wait.h>

#include <string>

#include "device/virtual_device.h"
#include "tests/support/test_device.h"

struct outcome {
    int status;
    std::string output;  // both streams
};

inline outcome dvxctl(const std::string &words, const std::string &input = "") {
    const std::string command = (input.empty() ? "" : "printf '" + input + "' | ") +
                                built("bin/dvxctl") + " " + words + " 2>&1";
    FILE *pipe = popen(command.c_str(), "r");
    outcome result;
    char buffer[4096];
    while (fgets(buffer, sizeof(buffer), pipe) != nullptr)
        result.output += buffer;
    const int status = pclose(pipe);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

// It fails with that status and one line, which has the reason in it.
inline void expect_refused(int status, const std::string &words, const std::string &reason) {
    const outcome result = dvxctl(words);
    EXPECT_EQ(result.status, status) << words << result.output;
    EXPECT_NE(result.output.find(reason), std::string::npos) << words << ": " << result.output;
    EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 1) << words;
}

// A device whose daemon ends with the test.
struct Tool : testing::Test {
    test_device device;

    void SetUp() override {
        if (!isolate_network())
            GTEST_SKIP() << "no network namespace of one's own here";
    }

    void TearDown() override {
        if (device_daemon_process(device.root) != 0)
            dvxctl("device stop");
    }
};
