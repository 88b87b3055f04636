// Lets one thing after another fail, over the daemon's start and a day of messages, and tells what
// came of it: an end with status 255 and its line, or a daemon that serves the rest. Anything else
// is a fault of the daemon, and the exit status says so.
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "device/virtual_device.h"
#include "tests/support/test_device.h"
#include "tools/messages.h"

namespace {

constexpr int patience_ms = 5000;

// One thing that fails.
struct fault {
    std::string preload;          // as the fault library takes it
    std::string library, symbol;  // a symbol that is missing, or without it the library
    std::string call, answer;     // a call that answers this
};

struct outcomes {
    int runs = 0;
    int ended = 0;
    int served = 0;
    int wrong = 0;
};

const std::vector<std::string> core_lines = {"Failed to init event manager..",
                                             "Failed to alloc",
                                             "Failed to init server..",
                                             "Failed to init kernel event monitor..",
                                             "Failed to init running app manager..",
                                             "Failed to init policy manager..."};

const std::vector<std::pair<std::string, std::vector<std::string>>> symbols = {
    {"libhwresource.so",
     {"init_hw_fps_control", "request_fps", "init_hw_img_enhance_engine_ctrl",
      "request_image_engine_mode", "enable_thermal_config", "get_num_of_thermal_config_desc",
      "verify_thermal_config_desc", "init_automode_node", "set_automode_freq",
      "init_hw_osprin_control", "request_osprin_control", "set_osprin_gov_state", "set_tmk_freq",
      "init_hw_fbcn_control", "request_fbcn_en", "request_fbcn_i_thresh"}},
    {"libdvxcc.so", {"init_white_list", "get_custom_config"}},
    {"libqcopt.so", {"perf_lock_use_profile"}}};

std::string log_of(const test_device &device) {
    std::ifstream file(device.root + device_daemon_log);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void put_into(const fault &what, const test_device &device) {
    const std::string library = device.root + "/vendor/lib64/" + what.library;
    if (!what.symbol.empty())
        device_hide_symbol(library, what.symbol);
    else if (!what.library.empty())
        std::filesystem::remove(library);
    if (!what.call.empty())
        device_answers(&device, what.call, what.answer);
    setenv("DVX_FAULT", what.preload.c_str(), 1);
}

int start(const test_device &device) {
    setenv("LD_PRELOAD", built("tests/libfault_library.so").c_str(), 1);
    const int pid = device_start_daemon(device.root, built("bin/dvxd"));
    unsetenv("LD_PRELOAD");
    return pid;
}

bool tell(const dvx_message &message) {
    return dvx_message_send_and_wait(&message) == 0;
}

// A day that reaches every feature. False when a message was not answered.
bool live_a_day(const test_device &device) {
    bool answered = true;
    for (const char *window : {"com.android.chrome", "com.kakao.talk", "com.example.game"}) {
        answered &= tell(
            make_text_message("powerhal", DVX_CODE_ACTIVITY, std::string(window).append("/.Main")));
        answered &= tell(make_text_message("powerhal", DVX_CODE_WINDOW, window));
    }
    answered &= tell(make_message("powerhal", DVX_CODE_GAME_OPTIMIZER, {1}));
    answered &= tell(make_message("powerhal", DVX_CODE_GAME, {1, 1, 45, 1}));
    const int fd = device_open_node(device.root, device_interval_node);
    for (int i = 0; fd >= 0 && i < 1300; ++i)
        device_report_interval(fd, 16700);
    close(fd);
    answered &= tell(make_message("automode", 0, {1}));
    for (int32_t code = 8; code <= 14; ++code)
        for (const int32_t on : {1, 0})
            answered &= tell(make_message("powerhal", code, {on}));
    device_report_panel(device.root, false);
    device_report_panel(device.root, true);
    answered &= tell(make_message("tmr", DVX_CODE_TIMED_MITIGATION, {50}));
    answered &= tell(make_message("lowpowermode", 0, {1, 2, 1}));
    answered &= tell(make_message("mediahal", DVX_CODE_VIDEO_DECODE, {1}));
    answered &= tell(make_message("vrhal", DVX_CODE_VR, {1}));
    answered &= tell(make_text_message("powerhal", DVX_CODE_HOME, "2:com.example.home"));
    answered &= tell(make_message("dgpc", DVX_CODE_FPS, {30}));
    return answered;
}

// Whether an ended daemon ended as it should: with its status and a core step's line.
bool ended_well(int status, const std::string &log) {
    for (const std::string &line : core_lines)
        if (log.find("E Quorvel : " + line) != std::string::npos)
            return WIFEXITED(status) && WEXITSTATUS(status) == 255;
    return false;
}

// Runs a daemon with the fault. False when it never came to pass: there is no such allocation, and
// nothing is counted.
bool run(const fault &what, outcomes *result) {
    test_device device;
    put_into(what, device);
    const int pid = start(device);
    int status = 0;
    int waited_ms = 0;
    bool started = false;
    bool gone = false;
    for (; !started && !gone && waited_ms < patience_ms; ++waited_ms) {
        gone = waitpid(pid, &status, WNOHANG) == pid;
        started = log_of(device).find("Halvane Start Successfully.") != std::string::npos;
        usleep(1000);
    }
    const bool good = gone ? ended_well(status, log_of(device))
                           : started && live_a_day(device) && waitpid(pid, &status, WNOHANG) == 0;
    if (!gone) {
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
    }
    if (!what.preload.empty() && !std::filesystem::exists(device.root + "/fault.log"))
        return false;
    ++result->runs;
    if (good)
        ++(gone ? result->ended : result->served);
    if (!good) {
        ++result->wrong;
        fprintf(stderr, "%s%s %s%s%s: neither ended as documented nor served; status %d\n%s\n",
                what.preload.c_str(), what.library.c_str(), what.symbol.c_str(), what.call.c_str(),
                what.answer.c_str(), status, log_of(device).c_str());
    }
    return true;
}

int report(const char *what, const outcomes &result) {
    printf("| %s | %d | %d | %d | %d |\n", what, result.runs, result.ended, result.served,
           result.wrong);
    fflush(stdout);
    return result.wrong;
}

}  // namespace

int main() {
    if (!isolate_network()) {
        fprintf(stderr, "faults: no network namespace of one's own here\n");
        return 2;
    }
    int wrong = 0;
    printf(
        "| what fails | runs | ended with 255 and its line | served the rest | neither |\n"
        "|---|---|---|---|---|\n");
    outcomes allocations;
    for (int k = 1; run({"nth " + std::to_string(k), "", "", "", ""}, &allocations); ++k) {
    }
    wrong += report("each allocation in turn", allocations);

    outcomes threads;
    for (int n = 1; run({"thread " + std::to_string(n), "", "", "", ""}, &threads); ++n) {
    }
    wrong += report("each thread", threads);

    outcomes missing_symbols;
    outcomes missing_libraries;
    outcomes negative_answers;
    for (const auto &[library, names] : symbols) {
        run({"", library, "", "", ""}, &missing_libraries);
        for (const std::string &name : names) {
            run({"", library, name, "", ""}, &missing_symbols);
            run({"", "", "", name, "-1"}, &negative_answers);
        }
    }
    wrong += report("each library missing", missing_libraries);
    wrong += report("each symbol missing", missing_symbols);
    wrong += report("each library call answering -1", negative_answers);
    return wrong == 0 ? 0 : 1;
}
