// The real daemon on a virtual device, in a network namespace of its own.
#include <dirent.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <thread>

#include "context/app_tables.h"
#include "core/events.h"
#include "device/virtual_device.h"
#include "resource/acceptor.h"
#include "tests/support/callback_order.h"
#include "tests/support/test_device.h"
#include "tools/messages.h"

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

    void start(const char *daemon = "bin/dvxd") {
        pid = device_start_daemon(device.root, built(daemon));
        ASSERT_GT(pid, 0);
        ASSERT_EQ(device_wait_until_started(device.root, pid, patience_ms), device_started)
            << log();
        wait_for_log("FIA Thread Started.");
        EXPECT_EQ(count_in_log("E Quorvel : Halvane Start Successfully."), 1);
    }

    // The exit status of a daemon that does not get up.
    int start_in_vain() {
        pid = device_start_daemon(device.root, built("bin/dvxd"));
        int status = 0;
        waitpid(pid, &status, 0);
        pid = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string log() const {
        std::ifstream file(device.root + device_daemon_log);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    int count_in_log(const std::string &text) const {
        const std::string all = log();
        int count = 0;
        for (size_t at = all.find(text); at != std::string::npos; at = all.find(text, at + 1))
            ++count;
        return count;
    }

    bool wait_for_log(const std::string &text, int times = 1) const {
        for (int waited = 0; waited < patience_ms * 1000; waited += pause_us) {
            if (count_in_log(text) >= times)
                return true;
            usleep(pause_us);
        }
        ADD_FAILURE() << "not logged: " << text << "\n" << log();
        return false;
    }

    bool wait_for_call(const std::string &call) {
        for (int waited = 0; waited < patience_ms * 1000; waited += pause_us) {
            for (const std::string &seen : device_calls(&device))
                if (seen == call)
                    return true;
            usleep(pause_us);
        }
        ADD_FAILURE() << "not called: " << call;
        return false;
    }

    static void tell(const char *client, int32_t code, const std::vector<int32_t> &values) {
        const dvx_message message = make_message(client, code, values);
        EXPECT_EQ(dvx_message_send_and_wait(&message), 0);
    }

    static void tell_text(int32_t code, const std::string &text) {
        const dvx_message message = make_text_message("powerhal", code, text);
        EXPECT_EQ(dvx_message_send_and_wait(&message), 0);
    }

    // Messages of three clients, panel changes and intervals, all at once.
    void keep_busy() {
        std::vector<std::thread> busy;
        busy.emplace_back([&] {
            const int fd = device_open_node(device.root, device_interval_node);
            for (int i = 0; i < 4000; ++i)
                device_report_interval(fd, i % 900 < 700 ? 16700 : 15000 + i * 13 % 30000);
            close(fd);
        });
        busy.emplace_back([&] {
            for (int i = 0; i < 60; ++i) {
                device_report_panel(device.root, i % 2 != 0);
                usleep(4000);
            }
        });
        for (int client = 0; client < 3; ++client)
            busy.emplace_back([client] {
                for (int i = 0; i < 120; ++i) {
                    tell_text(DVX_CODE_ACTIVITY, "com.game" + std::to_string(i % 7) + "/.Main");
                    tell_text(DVX_CODE_WINDOW, "com.game" + std::to_string(i % 7));
                    tell("powerhal", DVX_CODE_GAME, {i % 3, i % 4, 20 + i % 45, i % 2});
                    tell("powerhal", i % 16, {i % 2});
                    tell("dgpc", DVX_CODE_FPS, {client * 10 + i % 30});
                    tell("vrhal", DVX_CODE_VR, {i % 5 == 0});
                }
            });
        for (std::thread &worker : busy)
            worker.join();
    }

    static int64_t size_of_directory(const std::string &path) {
        return std::distance(fs::directory_iterator(path), fs::directory_iterator());
    }
};

TEST_F(Daemon, TunedGameGetsItsFrameRate) {
    start();
    tell("powerhal", DVX_CODE_GAME_OPTIMIZER, {1});
    tell("powerhal", DVX_CODE_GAME, {1, 1, 45, 0});
    EXPECT_TRUE(wait_for_call("request_fps 45"));
    EXPECT_EQ(count_in_log("I Quorvel : CF45 b1"), 1);
    device_report_panel(device.root, false);
    EXPECT_TRUE(wait_for_call("request_fps 60"));
    device_report_panel(device.root, true);
    EXPECT_TRUE(wait_for_call("request_fps 45"));
    tell("dgpc", DVX_CODE_FPS, {30});  // not granted while a game is tuned
    tell("powerhal", DVX_CODE_GAME, {1, 0, 45, 0});
    EXPECT_TRUE(wait_for_call("request_fps 30"));
}

TEST_F(Daemon, RunsAtTheHighestPriority) {
    if (setpriority(PRIO_PROCESS, 0, -1) != 0)
        GTEST_SKIP() << "this user may not raise a priority";
    start();
    EXPECT_EQ(getpriority(PRIO_PROCESS, static_cast<id_t>(pid)), -20);
}

TEST_F(Daemon, DebugLinesFollowTheirPropertiesAtScreenOff) {
    start();
    tell("powerhal", DVX_CODE_ROTATION, {});
    device_set_property(&device, "debug.dvxd_log.enable", "1");
    tell("powerhal", DVX_CODE_ROTATION, {});
    EXPECT_EQ(count_in_log("EV : "), 0);
    device_report_panel(device.root, false);
    usleep(50000);
    device_report_panel(device.root, true);
    EXPECT_TRUE(wait_for_log("EV : 81"));
}

TEST_F(Daemon, BadMessagesCostTheGoodOnesNothing) {
    start();
    const std::string descriptors = "/proc/" + std::to_string(pid) + "/fd";
    const auto open_before = size_of_directory(descriptors);
    std::vector<int> silent;
    for (int i = 0; i < 2; ++i)
        silent.push_back(dvx_client_connect());
    for (int i = 0; i < 50; ++i) {
        const int fd = dvx_client_connect();
        EXPECT_EQ(send(fd, "short", 5, MSG_NOSIGNAL), 5);
        close(fd);
    }
    tell("nobody", 0, {});
    tell("powerhal", 99, {});
    tell("powerhal", -5, {});
    tell("lowpowermode", 99, {1, 2, 3});
    tell("dgpc", DVX_CODE_FPS, {30});
    EXPECT_TRUE(wait_for_call("request_fps 30"));
    EXPECT_EQ(count_in_log("recv_data_from_client recv failed"), 2);  // the silent ones
    EXPECT_EQ(count_in_log("Current Device doesn't support nobody handlers."), 1);
    EXPECT_EQ(count_in_log("E Quorvel : Power HAL Handler: Code <-5> is not supported."), 1);
    EXPECT_EQ(size_of_directory(descriptors), open_before);
    for (const int fd : silent)
        close(fd);
}

TEST_F(Daemon, GameIsMeasuredLoweredAndReleasedThroughItsNode) {
    start();
    tell_text(DVX_CODE_ACTIVITY, "com.example.racer/.Race");
    tell_text(DVX_CODE_WINDOW, "com.example.racer");
    tell("powerhal", DVX_CODE_GAME, {0, 1, 60, 0});
    const int fd = device_open_node(device.root, device_interval_node);
    ASSERT_GE(fd, 0);
    for (int i = 0; i < 901 + 301; ++i)
        ASSERT_EQ(device_report_interval(fd, 16700), 0);
    EXPECT_TRUE(wait_for_log("100% (301/301) H"));
    EXPECT_TRUE(wait_for_call("set_tmk_freq TMK_CLUSTER0 1612800"));
    tell("powerhal", DVX_CODE_GAME, {0, 0, 60, 0});
    EXPECT_TRUE(wait_for_call("set_tmk_freq TMK_CLUSTER0 1766400"));
    close(fd);
}

TEST_F(Daemon, LoadedLibraryCallsItBack) {
    fs::copy_file(built("tests/libcallback_library.so"),
                  device.root + "/vendor/lib64/libhwresource.so",
                  fs::copy_options::overwrite_existing);
    std::ofstream(device.root + "/callback.txt") << "............";
    pid = device_start_daemon(device.root, built("bin/dvxd"));
    ASSERT_EQ(device_wait_until_started(device.root, pid, patience_ms), device_started) << log();
    std::ifstream file(device.root + "/callback.txt");
    std::string written;
    std::getline(file, written);
    EXPECT_EQ(written, "called back!");
}

TEST_F(Daemon, ServesWhatIsLeftOfADevice) {
    fs::remove_all(device.root + "/vendor");
    fs::remove_all(device.root + "/sys");
    fs::remove_all(device.root + "/properties");
    pid = device_start_daemon(device.root, built("bin/dvxd"));
    ASSERT_EQ(device_wait_until_started(device.root, pid, patience_ms), device_started) << log();
    for (const char *line :
         {"E Quorvel : Failed to init fps manager..", "E Quorvel : Failed to init ie manager..",
          "E Quorvel : No handle to support thermal", "E Quorvel : Failed to get handle for fia",
          "E Quorvel : Failed to get qcopt handle.", "I Quorvel : No support osprin control"})
        EXPECT_EQ(count_in_log(line), 1) << line;
    EXPECT_LT(log().find("Failed to get qcopt handle."),
              log().find("This device doesn't support thermal engine"));
    tell("powerhal", DVX_CODE_BROWSER, {1});
    tell("dgpc", DVX_CODE_FPS, {30});
    EXPECT_TRUE(wait_for_log("No such requestor [0]"));
    EXPECT_EQ(count_in_log("APP:8"), 1);
}

TEST_F(Daemon, SecondDaemonEndsWithItsLine) {
    start();
    test_device second;
    const int other = device_start_daemon(second.root, built("bin/dvxd"));
    int status = 0;
    waitpid(other, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 255);
    std::ifstream file(second.root + device_daemon_log);
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    EXPECT_NE(text.find("E Quorvel : fail to create socket\n"), std::string::npos);
    EXPECT_NE(text.find("E Quorvel : Failed to init server..\n"), std::string::npos);
    EXPECT_EQ(text.find("error in polling"), std::string::npos);
    setenv("DVXD_ROOT", device.root.c_str(), 1);
    tell("dgpc", DVX_CODE_FPS, {30});  // the first is none the worse
    EXPECT_TRUE(wait_for_call("request_fps 30"));
}

// What start-up needs, taken away by the library that tests put before the C library's.
struct FailedStart {
    std::string fault;
    const char *lines[2];
};

void PrintTo(const FailedStart &start, std::ostream *output) {
    *output << start.fault;
}

struct CoreSteps : Daemon, testing::WithParamInterface<FailedStart> {};

TEST_P(CoreSteps, EndTheStartWhenTheyFail) {
    setenv("DVX_FAULT", GetParam().fault.c_str(), 1);
    setenv("LD_PRELOAD", built("tests/libfault_library.so").c_str(), 1);
    setenv("ASAN_OPTIONS", "verify_asan_link_order=0:alloc_dealloc_mismatch=0:detect_leaks=0", 1);
    const int status = start_in_vain();
    unsetenv("LD_PRELOAD");
    EXPECT_EQ(status, 255) << log();
    for (const char *line : GetParam().lines) {
        if (line == nullptr)
            break;
        EXPECT_EQ(count_in_log(std::string(line) + "\n"), 1) << line << "\n" << log();
    }
    EXPECT_EQ(count_in_log("Halvane Start Successfully."), 0);
}

// By their size: the event table, an acceptor, the running-app record, an entry of the trigger.
std::string allocation_of(size_t size) {
    return std::string("alloc ").append(std::to_string(size));
}

constexpr char no_server[] = "E Quorvel : Failed to init server..";
constexpr char no_monitor[] = "E Quorvel : Failed to init kernel event monitor..";

// Threads are started in the order: thermal check, analyser, client listener, kernel event monitor,
// policy.
INSTANTIATE_TEST_SUITE_P(
    Start, CoreSteps,
    testing::Values(
        FailedStart{allocation_of(event_count * sizeof(void *)),
                    {"E Quorvel : Failed to allocate event state",
                     "E Quorvel : Failed to init event manager.."}},
        FailedStart{allocation_of(sizeof(acceptor_node)), {"E Quorvel : Failed to alloc", nullptr}},
        FailedStart{"listen", {"E Quorvel : listen error", no_server}},
        FailedStart{"thread 3", {"E Quorvel : Unable to create pthread to listen", no_server}},
        FailedStart{"thread 4", {"E Quorvel : Error initializing sync notify Thread", no_monitor}},
        FailedStart{allocation_of(18 * sizeof(int32_t)),
                    {"E Quorvel : Failed to initialize event_listener",
                     "E Quorvel : Failed to init running app manager.."}},
        FailedStart{"thread 5",
                    {"E Quorvel : Error initializing Policy Manager Thread",
                     "E Quorvel : Failed to init policy manager..."}}));

struct OptionalSteps : Daemon, testing::WithParamInterface<FailedStart> {};

TEST_P(OptionalSteps, CostTheirLinesAndNoMore) {
    setenv("DVX_FAULT", GetParam().fault.c_str(), 1);
    setenv("LD_PRELOAD", built("tests/libfault_library.so").c_str(), 1);
    setenv("ASAN_OPTIONS", "verify_asan_link_order=0:alloc_dealloc_mismatch=0", 1);
    pid = device_start_daemon(device.root, built("bin/dvxd"));
    unsetenv("LD_PRELOAD");
    ASSERT_EQ(device_wait_until_started(device.root, pid, patience_ms), device_started) << log();
    for (const char *line : GetParam().lines)
        EXPECT_EQ(count_in_log(std::string(line) + "\n"), 1) << line << "\n" << log();
    tell("dgpc", DVX_CODE_FPS, {30});
    EXPECT_TRUE(wait_for_call("request_fps 30"));
}

INSTANTIATE_TEST_SUITE_P(
    Start, OptionalSteps,
    testing::Values(FailedStart{"thread 1",
                                {"E Quorvel : Error to initialzed sync notify thread.",
                                 "I Quorvel : AM0 Enabled"}},
                    FailedStart{"thread 2",
                                {"E Quorvel : Error initializing FIA thread",
                                 "E Quorvel : Halvane Start Successfully."}},
                    FailedStart{
                        allocation_of(package_name_size + 3 * sizeof(void *)),
                        {"E Quorvel : Memory allocation failed for activity trigger configuration.",
                         "I Quorvel : No Supporting AT"}}));

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
    const auto set = [](const char *attribute, const char *value) {
        std::ofstream(attribute) << value << std::flush;
    };
    set(links[0].second, "panel_power_on = 0");
    EXPECT_TRUE(wait_for_call("request_fbcn_en 0"));
    set(links[0].second, "panel_power_on = 1");
    EXPECT_TRUE(wait_for_call("request_fbcn_en 1"));
    tell("powerhal", DVX_CODE_GAME, {0, 1, 60, 0});
    // Reports that come before the daemon has read the last one are one to it.
    for (int i = 0; i < 20000 && count_in_log("PM Complete!") == 0; i += 100)
        for (int k = 0; k < 100; ++k) {
            set(links[1].second, "16700");
            usleep(200);
        }
    EXPECT_EQ(count_in_log("PM Complete!"), 1) << log();
}

// In real time: the thermal engine is there after its twelve polls, and timers end what they
// should.
TEST_F(Daemon, TimersAndThermalEngineKeepTheirTime) {
    device_set_property(&device, "debug.dvxd_log.enable", "1");
    start();
    tell("powerhal", DVX_CODE_GAME, {0, 1, 60, 0});
    tell("automode", DVX_CODE_ANY, {1});
    EXPECT_TRUE(wait_for_call("request_fps 20"));
    tell("tmr", DVX_CODE_TIMED_MITIGATION, {700});
    tell("powerhal", DVX_CODE_INTERACTION, {});
    EXPECT_TRUE(wait_for_call("request_tmr_2cluster 4294967295 4294967295"));
    EXPECT_TRUE(wait_for_call("request_fps 20"));
    EXPECT_TRUE(wait_for_log("EV : 70"));
    tell("powerhal", DVX_CODE_ENCODE, {1});
    EXPECT_TRUE(wait_for_call("enable_thermal_config TCONF_CAMERA 1"));
    EXPECT_EQ(count_in_log("Sanitizer"), 0) << log();
}

TEST_F(Daemon, CallbacksRunInTheOrderOfTheirRegistration) {
    start("tests/dvxd_talkative");
    keep_busy();
    const callback_order order = check_callback_order(log());
    EXPECT_EQ(order.broken, "");
    EXPECT_GT(order.callbacks, 5000);
}

// Everything at once, for the sanitizers to watch.
TEST_F(Daemon, StaysWholeWithEveryThreadBusy) {
    device_set_property(&device, "debug.dvxd_log.enable", "1");
    start();
    keep_busy();

    // A known end: what the daemon believes is what it was told last.
    device_report_panel(device.root, true);
    for (const int code : {DVX_CODE_BROWSER, DVX_CODE_SNS, DVX_CODE_GEO, DVX_CODE_INCOMING_CALL,
                           DVX_CODE_GAME_OPTIMIZER})
        tell("powerhal", code, {0});
    tell_text(DVX_CODE_HOME, "0:x");
    tell_text(DVX_CODE_WINDOW, "com.last");
    tell_text(DVX_CODE_ACTIVITY, "com.last");
    tell("powerhal", DVX_CODE_GAME, {0, 1, 60, 0});
    tell("dgpc", DVX_CODE_FPS, {0});
    usleep(50000);
    device_calls(&device);
    tell("dgpc", DVX_CODE_FPS, {25});
    EXPECT_EQ(device_calls_of(&device, "request_fps"), calls{"request_fps 25"});
    EXPECT_EQ(kill(pid, 0), 0);
    EXPECT_EQ(count_in_log("Sanitizer"), 0) << log();
}

}  // namespace
