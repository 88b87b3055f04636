// Who listens to what, in which order, on the real start-up with debug lines on from the first one.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <map>
#include <sstream>

#include "device/virtual_device.h"
#include "tests/support/test_device.h"

namespace {

using names = std::vector<std::string>;

// The registrants of each event in their order. The analyser registers on a thread of its own, so
// its place is not fixed: it is left out here and looked for by itself.
const std::map<int, const char *> catalogue = {
    {0, "running_app"},
    {1, "running_app"},
    {2, "running_app"},
    {3, "running_app"},
    {4, "running_app"},
    {5, "running_app"},
    {6, "running_app"},
    {7, "running_app"},
    {8, "running_app"},
    {9, "running_app"},
    {10, "dfrc_if merlak_if tmr"},
    {11, "running_app tms"},
    {12, "dfrc_if profile_ctrl running_app"},
    {13, "dfrc_if autogame"},
    {14, "dfrc_if"},
    {15, "tmr"},
    {16, "image_enhance_ctrl"},
    {17, "image_enhance_ctrl"},
    {18, "running_app"},
    {19, "running_app"},
    {20, "tms"},
    {21, "tms"},
    {24, "tms"},
    {25, "tms"},
    {26, "running_app"},
    {27, "running_app"},
    {30, "running_app"},
    {31, "running_app"},
    {32, "dfrc_if"},
    {33, "dfrc_if"},
    {34, "dfrc_if"},
    {35, "dfrc_if"},
    {36, "dfrc_if"},
    {37, "dfrc_if"},
    {40, "dfrc_if running_app"},
    {41, "dfrc_if running_app"},
    {42, "dfrc_if image_enhance_ctrl policy_manager"},
    {43, "dfrc_if merlak_if image_enhance_ctrl policy_manager tms property_worker osprin_if"},
    {44, "merlak_if image_enhance_ctrl policy_manager tms property_worker osprin_if"},
    {45, "dfrc_if image_enhance_ctrl policy_manager"},
    {46, "dfrc_if image_enhance_ctrl policy_manager"},
    {47, "dfrc_if image_enhance_ctrl policy_manager tms property_worker"},
    {49, "merlak_if tms property_worker osprin_if autogame"},
    {50, "merlak_if tms property_worker osprin_if"},
    {53, "tms property_worker"},
    {58, "image_enhance_ctrl"},
    {80, "running_app runtime_debugger"},
    {81, "running_app"},
    {90, "running_app"},
    {91, "running_app"},
    {92, "running_app"},
    {93, "running_app"},
    {94, "running_app"},
    {95, "running_app"},
    {96, "running_app"},
    {97, "running_app"},
};

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
    for (int id = 0; id < 98; ++id) {
        names expected;
        const auto row = catalogue.find(id);
        std::istringstream words(row != catalogue.end() ? row->second : "");
        for (std::string word; words >> word;)
            if (word != without.absent || (without.only_event >= 0 && without.only_event != id))
                expected.push_back(word);
        EXPECT_EQ(seen[id], expected) << "event " << id;
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
