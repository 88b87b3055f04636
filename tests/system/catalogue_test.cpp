// Who listens to what, in which order, on the real start-up with debug lines on from the first one.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <iterator>
#include <map>
#include <sstream>

#include "device/virtual_device.h"
#include "tests/support/test_device.h"

namespace {

using names = std::vector<std::string>;

// The registrants of each event in their order. The analyser registers on a thread of its own, so
// its place is not fixed: it is left out here and looked for by itself.
constexpr char catalogue[] = R"(
0 9 running_app
10 10 dfrc_if merlak_if tmr
11 11 running_app tms
12 12 dfrc_if profile_ctrl running_app
13 13 dfrc_if autogame
14 14 dfrc_if
15 15 tmr
16 17 image_enhance_ctrl
18 19 running_app
20 21 tms
24 25 tms
26 27 running_app
30 31 running_app
32 37 dfrc_if
40 41 dfrc_if running_app
42 42 dfrc_if image_enhance_ctrl policy_manager
43 43 dfrc_if merlak_if image_enhance_ctrl policy_manager tms property_worker osprin_if
44 44 merlak_if image_enhance_ctrl policy_manager tms property_worker osprin_if
45 46 dfrc_if image_enhance_ctrl policy_manager
47 47 dfrc_if image_enhance_ctrl policy_manager tms property_worker
49 49 merlak_if tms property_worker osprin_if autogame
50 50 merlak_if tms property_worker osprin_if
53 53 tms property_worker
58 58 image_enhance_ctrl
80 80 running_app runtime_debugger
81 81 running_app
90 97 running_app
)";

// The catalogue by event; a line is the first id, the last, and the registrants of each.
std::map<int, names> read_catalogue() {
    std::map<int, names> expected;
    std::istringstream lines(catalogue);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        int first = 0;
        int last = -1;
        words >> first >> last;
        const names registrants{std::istream_iterator<std::string>(words), {}};
        for (int id = first; id <= last; ++id)
            expected[id] = registrants;
    }
    return expected;
}

const std::vector<int> analyser_events = {43, 44, 49, 50, 40, 41, 81, 80, 22, 23};

struct missing_feature {
    const char *library;  // null: nothing is missing
    const char *symbol;
    const char *absent;  // the registrant that is not there
    int only_event;      // -1: from every event
};

void PrintTo(const missing_feature &feature, std::ostream *output) {
    *output << "without " << (feature.library != nullptr ? feature.symbol : "nothing");
}

struct Catalogue : testing::TestWithParam<missing_feature> {
    test_device device;
};

TEST_P(Catalogue, HasExactlyItsRegistrants) {
    if (!isolate_network())
        GTEST_SKIP() << "no network namespace of one's own here";
    const missing_feature &without = GetParam();
    if (without.library != nullptr) {
        ASSERT_TRUE(
            device_hide_symbol(device.root + "/vendor/lib64/" + without.library, without.symbol));
    }
    const int pid = device_start_daemon(device.root, built("tests/dvxd_talkative"));
    ASSERT_EQ(device_wait_until_started(device.root, pid, 20000), device_started);
    usleep(200000);  // the analyser's own registrations
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);

    std::map<int, names> seen;
    std::vector<int> seen_analyser;
    int64_t offset = 0;
    for (const std::string &line : device_read_lines(device.root + device_daemon_log, &offset)) {
        char name[32];
        int id;
        const size_t text = line.find("CB[");
        if (text == std::string::npos ||
            sscanf(line.c_str() + text, "CB[%31[^]]] is registered for EV[%d]", name, &id) != 2)
            continue;
        if (std::string(name) == "fia")
            seen_analyser.push_back(id);
        else
            seen[id].push_back(name);
    }
    std::map<int, names> expected = read_catalogue();
    for (int id = 0; id < 98; ++id) {
        if (without.only_event < 0 || without.only_event == id)
            std::erase(expected[id], without.absent);
        EXPECT_EQ(seen[id], expected[id]) << "event " << id;
    }
    EXPECT_EQ(seen_analyser,
              std::string("fia") == without.absent ? std::vector<int>{} : analyser_events);
}

INSTANTIATE_TEST_SUITE_P(
    Features, Catalogue,
    testing::Values(missing_feature{nullptr, "", "", -1},
                    missing_feature{"libhwresource.so", "request_fps", "dfrc_if", -1},
                    missing_feature{"libhwresource.so", "request_image_engine_mode",
                                    "image_enhance_ctrl", -1},
                    missing_feature{"libhwresource.so", "init_hw_fbcn_control", "fia", -1},
                    missing_feature{"libhwresource.so", "set_osprin_gov_state", "osprin_if", -1},
                    missing_feature{"libdvxcc.so", "get_custom_config", "tms", 11}));

}  // namespace
