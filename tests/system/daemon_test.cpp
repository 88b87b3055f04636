// The real daemon on a virtual device, in a network namespace of its own.
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "device/virtual_device.h"
#include "tests/support/test_device.h"
#include "tools/base/files.h"
#include "tools/recording/messages.h"

namespace {

namespace fs = std::filesystem;
using calls = std::vector<std::string>;

constexpr int patience_ms = 20000;
constexpr useconds_t pause_us = 5000;

struct Daemon : testing::Test {
    test_device device;
    int pid = 0;

    void SetUp() override {
        if (!isolate_network())
            GTEST_SKIP() << "no network namespace of one's own here";
    }

    void TearDown() override {
        if (pid > 0) {
            kill(pid, SIGKILL);
            waitpid(pid, nullptr, 0);
        }
    }

    void start() {
        pid = device_start_daemon(device.root, built("bin/dvxd"));
        ASSERT_EQ(device_wait_until_started(device.root, pid, patience_ms), device_started)
            << log();
    }

    std::string log() const { return read_file(device.root + device_daemon_log); }

    bool has_logged(const std::string &text) const { return log().find(text) != std::string::npos; }

    // Since the last call.
    bool has_called(const std::string &call) {
        const calls all = device_calls(&device);
        return std::find(all.begin(), all.end(), call) != all.end();
    }

    template <typename condition>
    void wait_until(condition holds) const {
        for (int waited = 0; waited < patience_ms * 1000; waited += pause_us) {
            if (holds())
                return;
            usleep(pause_us);
        }
        ADD_FAILURE() << log();
    }

    void wait_for_log(const std::string &text) {
        SCOPED_TRACE(text);
        wait_until([&] { return has_logged(text); });
    }

    void wait_for_call(const std::string &call) {
        SCOPED_TRACE(call);
        wait_until([&] { return has_called(call); });
    }

    static void tell(const char *client, int32_t code, const std::vector<int32_t> &values) {
        const dvx_message message = make_message(client, code, values);
        EXPECT_EQ(dvx_message_send_and_wait(&message, answer_timeout_ms), 0);
    }
};

TEST_F(Daemon, RunsAtTheHighestPriority) {
    if (setpriority(PRIO_PROCESS, 0, -1) != 0)
        GTEST_SKIP() << "this user may not raise a priority";
    start();
    EXPECT_EQ(getpriority(PRIO_PROCESS, static_cast<id_t>(pid)), -20);
}

TEST_F(Daemon, LoadedLibraryCallsItBack) {
    fs::copy_file(built("tests/libcallback_library.so"),
                  device.root + "/vendor/lib64/libhwresource.so",
                  fs::copy_options::overwrite_existing);
    std::ofstream(device.root + "/callback.txt") << "............";
    start();
    EXPECT_EQ(read_file(device.root + "/callback.txt"), "called back!");
}

TEST_F(Daemon, ServesWhatIsLeftOfADevice) {
    for (const char *part : {"/vendor", "/sys", "/properties"})
        fs::remove_all(device.root + part);
    start();
    tell("dgpc", DVX_CODE_FPS, {30});
    wait_for_log("No such requestor [0]");
}

TEST_F(Daemon, SecondDaemonEndsWithItsLine) {
    start();
    const test_device second;
    const int other = device_start_daemon(second.root, built("bin/dvxd"));
    int status = 0;
    waitpid(other, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 255);
    const std::string text = read_file(second.root + device_daemon_log);
    EXPECT_NE(text.find("E Quorvel : Failed to init server..\n"), std::string::npos) << text;
    tell("dgpc", DVX_CODE_FPS, {30});  // the first is none the worse
    wait_for_call("request_fps 30");
}

// On attributes that signal as a phone's do: the host's two names, in a namespace of their own.
TEST_F(Daemon, IsDrivenByRealPollAttributes) {
    if (unshare(geteuid() == 0 ? CLONE_NEWUTS : CLONE_NEWUSER | CLONE_NEWUTS) != 0)
        GTEST_SKIP() << "skipped: no host-name namespace of one's own here";
    const std::pair<const char *, const char *> links[] = {
        {device_panel_node, "/proc/sys/kernel/domainname"},
        {device_interval_node, "/proc/sys/kernel/hostname"}};
    for (const auto &[node, attribute] : links) {
        fs::remove(device.root + node);
        fs::create_symlink(attribute, device.root + node);
        if (access(attribute, W_OK) != 0)
            GTEST_SKIP() << "skipped: the host's names cannot be written here";
    }
    start();
    wait_for_log("FIA Thread Started.");
    const auto set = [](const char *attribute, const char *value) {
        std::ofstream(attribute) << value << std::flush;
    };
    set(links[0].second, "panel_power_on = 0");
    wait_for_call("request_fbcn_en 0");
    set(links[0].second, "panel_power_on = 1");
    wait_for_call("request_fbcn_en 1");
    tell("powerhal", DVX_CODE_GAME, {0, 1, 60, 0});
    // Reports that come before the daemon has read the last one are one to it.
    for (int i = 0; i < 20000 && !has_logged("PM Complete!"); i += 100)
        for (int k = 0; k < 100; ++k) {
            set(links[1].second, "16700");
            usleep(200);
        }
    EXPECT_TRUE(has_logged("PM Complete!")) << log();
}

}  // namespace
