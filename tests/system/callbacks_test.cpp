// Who listens to what, in which order, on the real start-up; and that callbacks run in that order
// under load. The daemon's debug lines are on from its first one.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <iterator>
#include <map>
#include <set>
#include <sstream>

#include "device/virtual_device.h"
#include "tests/support/load.h"
#include "tests/support/test_device.h"
#include "tools/base/files.h"

namespace {

using names = std::vector<std::string>;

// The registrants of each event in their order. The analyser registers on a thread of its own, so
// its place is not fixed: it is left out here and looked for by itself.
constexpr char catalogue[] = R"(
running_app: 0 9 18 19 26 27 30 31 81 81 90 97
dfrc_if merlak_if tmr: 10 10
running_app tms: 11 11
dfrc_if profile_ctrl running_app: 12 12
dfrc_if autogame: 13 13
dfrc_if: 14 14 32 37
tmr: 15 15
image_enhance_ctrl: 16 17 58 58
tms: 20 21 24 25
dfrc_if running_app: 40 41
dfrc_if image_enhance_ctrl policy_manager: 42 42 45 46
dfrc_if merlak_if image_enhance_ctrl policy_manager tms property_worker osprin_if: 43 43
merlak_if image_enhance_ctrl policy_manager tms property_worker osprin_if: 44 44
dfrc_if image_enhance_ctrl policy_manager tms property_worker: 47 47
merlak_if tms property_worker osprin_if autogame: 49 49
merlak_if tms property_worker osprin_if: 50 50
tms property_worker: 53 53
running_app runtime_debugger: 80 80
)";

// The catalogue by event; a line is registrants, in their order, and the first and last events of
// spans that have them.
std::map<int, names> read_catalogue() {
    std::map<int, names> expected;
    std::istringstream lines(catalogue);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line.substr(0, line.find(':')));
        const names registrants{std::istream_iterator<std::string>(words), {}};
        std::istringstream spans(line.substr(line.find(':') + 1));
        for (int first = 0, last = 0; spans >> first >> last;)
            for (int id = first; id <= last; ++id)
                expected[id] = registrants;
    }
    return expected;
}

const std::set<int> analyser_events = {22, 23, 40, 41, 43, 44, 49, 50, 80, 81};

// An event that is being delivered, and how many of its callbacks have run.
struct delivery {
    const names *callbacks;
    size_t next;
};

// What a log says of callbacks.
struct callback_log {
    std::map<int, names> registered;
    int run = 0;         // from the daemon's start line on
    std::string broken;  // the first line that came out of its turn
};

// On every thread, callbacks run in the order of their registration, nested ones to their end
// first.
bool run_callback(std::vector<delivery> *stack, const std::string &name) {
    while (!stack->empty() && stack->back().next == stack->back().callbacks->size())
        stack->pop_back();
    return !stack->empty() && (*stack->back().callbacks)[stack->back().next++] == name;
}

callback_log read_callbacks(const test_device &device) {
    callback_log seen;
    std::map<int, std::vector<delivery>> threads;
    bool started = false;
    int64_t offset = 0;
    for (const std::string &line : read_lines(device.root + device_daemon_log, &offset)) {
        char name[32];
        int thread = 0;
        int event = 0;
        const size_t text = line.find(" : ");
        if (text == std::string::npos || sscanf(line.c_str(), "%*s %*s %*d %d", &thread) != 1)
            continue;
        const std::string said = line.substr(text + 3);
        started |= said == "Halvane Start Successfully.";
        if (sscanf(said.c_str(), "CB[%31[^]]] is registered for EV[%d]", name, &event) == 2) {
            seen.registered[event].push_back(name);
        } else if (started && sscanf(said.c_str(), "EV : %d", &event) == 1) {
            threads[thread].push_back({&seen.registered[event], 0});
        } else if (sscanf(said.c_str(), "Callback for %31s action start", name) == 1 &&
                   !threads[thread].empty()) {
            ++seen.run;
            if (!run_callback(&threads[thread], name) && seen.broken.empty())
                seen.broken = line;
        }
    }
    return seen;
}

// What the daemon on the device says of callbacks, from its start to its end.
callback_log live(const test_device &device, void (*meanwhile)(const std::string &root)) {
    const int pid = device_start_daemon(device.root, built("tests/dvxd_talkative"));
    EXPECT_GT(pid, 0);
    if (pid <= 0)
        return {};
    EXPECT_EQ(device_wait_until_started(device.root, pid, 20000), device_started);
    usleep(200000);  // the analyser's own registrations
    meanwhile(device.root);
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
    return read_callbacks(device);
}

// What is missing of the device, and who is not registered then.
struct missing_feature {
    const char *library;
    const char *symbol;
    const char *absent;
    int only_event;  // -1: from every event
};

constexpr char hardware[] = "libhwresource.so";
constexpr missing_feature missing[] = {
    {nullptr, "nothing", "", -1},
    {hardware, "request_fps", "dfrc_if", -1},
    {hardware, "request_image_engine_mode", "image_enhance_ctrl", -1},
    {hardware, "init_hw_fbcn_control", "fia", -1},
    {hardware, "set_osprin_gov_state", "osprin_if", -1},
    {"libdvxcc.so", "get_custom_config", "tms", 11}};

TEST(Callbacks, AreExactlyThoseOfTheCatalogue) {
    if (!isolate_network())
        GTEST_SKIP() << "no network namespace of one's own here";
    for (const missing_feature &without : missing) {
        const test_device device;
        if (without.library != nullptr)
            device_hide_symbol(device.root + "/vendor/lib64/" + without.library, without.symbol);
        callback_log seen = live(device, [](const std::string &) {});
        std::map<int, names> expected = read_catalogue();
        const bool analysed = std::string("fia") != without.absent;
        for (int id = 0; id < 98; ++id) {
            if (without.only_event < 0 || without.only_event == id)
                std::erase(expected[id], without.absent);
            EXPECT_EQ(std::erase(seen.registered[id], "fia"),
                      analysed ? analyser_events.count(id) : 0)
                << "event " << id << " without " << without.symbol;
            EXPECT_EQ(seen.registered[id], expected[id])
                << "event " << id << " without " << without.symbol;
        }
    }
}

TEST(Callbacks, RunInTheOrderOfTheirRegistration) {
    if (!isolate_network())
        GTEST_SKIP() << "no network namespace of one's own here";
    const test_device device;
    const callback_log seen = live(device, [](const std::string &root) {
        load busy(root, 3);
        while (busy.messages < 3000)
            usleep(1000);
        busy.end();
        EXPECT_EQ(busy.unanswered, 0);
    });
    EXPECT_EQ(seen.broken, "");
    EXPECT_GT(seen.run, 5000);
}

}  // namespace
