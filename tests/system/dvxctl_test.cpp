// dvxctl as a person uses it.
#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>

#include "device/virtual_device.h"
#include "tests/support/test_device.h"

namespace {

struct outcome {
    int status;
    std::string output;  // both streams
};

outcome dvxctl(const std::string &words, const std::string &input = "") {
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

TEST_F(Tool, NamesTheWrongWord) {
    const std::pair<const char *, const char *> wrong[] = {{"gmae on", "gmae"},
                                                           {"game maybe", "maybe"},
                                                           {"game on --fsp 45", "--fsp"},
                                                           {"window", "NAME"},
                                                           {"fps fast", "fast"},
                                                           {"automode sometimes", "sometimes"},
                                                           {"raw powerhal", "CODE"},
                                                           {"raw powerhal x", "x"},
                                                           {"raw powerhal 4 1 --text a", "--text"},
                                                           {"device lift", "lift"},
                                                           {"device panel dim", "dim"},
                                                           {"device frames - --rate slow", "slow"},
                                                           {"", "ubcommand"}};
    for (const auto &[words, named] : wrong) {
        const outcome result = dvxctl(words);
        EXPECT_EQ(result.status, 2) << words << result.output;
        EXPECT_NE(result.output.find(named), std::string::npos) << words << ": " << result.output;
        EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 1) << words;
    }
    for (const char *words : {"--help", "game --help", "device --help", "device frames --help"})
        EXPECT_EQ(dvxctl(words).status, 0) << words;
}

TEST_F(Tool, SaysWhenNobodyListens) {
    for (const char *words : {"touch", "game on", "device panel on", "device stop"}) {
        const outcome result = dvxctl(words);
        EXPECT_EQ(result.status, 1) << words;
        EXPECT_NE(result.output.find("no daemon"), std::string::npos) << result.output;
        EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 1) << words;
    }
}

TEST_F(Tool, DrivesADeviceFromItsLayoutToItsEnd) {
    EXPECT_EQ(dvxctl("device create").status, 0);
    EXPECT_EQ(dvxctl("device start").status, 0);
    EXPECT_EQ(dvxctl("device start").status, 1);
    EXPECT_EQ(dvxctl("device create").status, 1);  // not under a daemon's feet
    device.calls_offset = 0;
    EXPECT_EQ(dvxctl("fps 30").status, 0);
    EXPECT_EQ(device_calls_of(&device, "request_fps"), std::vector<std::string>{"request_fps 30"});
    EXPECT_EQ(dvxctl("raw dgpc 16 0").status, 0);
    EXPECT_EQ(device_calls_of(&device, "request_fps"), std::vector<std::string>{"request_fps 60"});
    EXPECT_EQ(dvxctl("raw powerhal 4 --text 'a window'").status, 0);
    EXPECT_EQ(dvxctl("home 2 com.example.home").status, 0);
    std::ifstream messages(device.root + device_messages_log);
    const std::string noted{std::istreambuf_iterator<char>(messages),
                            std::istreambuf_iterator<char>()};
    EXPECT_NE(noted.find(" powerhal 4 a window\n"), std::string::npos);
    EXPECT_NE(noted.find(" powerhal 15 2:com.example.home\n"), std::string::npos);

    EXPECT_EQ(dvxctl("device panel off").status, 0);
    EXPECT_EQ(dvxctl("device frames - --rate max", "16666\\n33333\\n").output,
              "2 intervals played\n");
    const outcome bad = dvxctl("device frames -", "16666\\nfast\\n");
    EXPECT_EQ(bad.status, 1);
    EXPECT_NE(bad.output.find("line 2: not an interval: 'fast'"), std::string::npos);
    EXPECT_EQ(dvxctl("device prop debug.x").output, "\n");
    EXPECT_EQ(dvxctl("device prop debug.x 7").status, 0);
    EXPECT_EQ(dvxctl("device prop debug.x").output, "7\n");
    EXPECT_EQ(dvxctl("device prop ../x 7").status, 1);
    EXPECT_EQ(dvxctl("device stop").status, 0);
}

TEST_F(Tool, LeavesOtherDirectoriesAlone) {
    const std::string other = device.root + "/precious";
    std::filesystem::create_directory(other);
    std::ofstream(other + "/letter") << "dear";
    EXPECT_EQ(dvxctl("device --root " + other + " create").status, 1);
    EXPECT_TRUE(std::filesystem::exists(other + "/letter"));
}

}  // namespace
