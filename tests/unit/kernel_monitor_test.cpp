// Kernel nodes, stepped report by report.
#include "ipc/kernel_event_monitor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "core/event_manager.h"
#include "device/virtual_device.h"
#include "fia/records.h"
#include "fia/statistics.h"
#include "tests/support/log_sink.h"
#include "tests/support/recorder.h"
#include "tests/support/test_device.h"

namespace {

using ids = std::vector<int>;

fia_data data;
fia_stats stats;

// Intervals are seen in the analyser's statistics, which move while it is suspended too.
void publish_statistics() {
    fia_stats_init(&stats);
    data.mode = fia_mode_suspended;
    fia.data = &data;
    fia.stats = &stats;
    fia_publish();
}

TEST(PanelReports, AreNewsOnlyOnce) {
    ASSERT_EQ(init_event_manager(), 0);
    record_events();
    const struct {
        const char *report;
        ids raised;
    } reports[] = {{"panel_power_on = 1\n", {}},   {"panel_power_on = 0\n", {80}},
                   {"panel_power_on = 0\n", {}},   {"panel_power_on = 2\n", {}},
                   {"panel_power_on = 1\n", {81}}, {"panel_power_on = 2\n", {80}},
                   {"panel_power_on = 1", {81}},   {"garbage", {80}},
                   {"panel_power_on=1", {81}},     {"", {80}}};
    for (const auto &row : reports) {
        cb_notify_panel_power_states(row.report);
        EXPECT_EQ(take_raised(), row.raised) << row.report;
    }
}

TEST(IntervalReports, AreNumbersOrSkipped) {
    publish_statistics();
    for (const char *report : {"", "fast", "\n", "-", "panel_power_on = 1"})
        cb_notify_fbcn_interval(report);
    EXPECT_EQ(data.frame_cnt, 0);
    for (const char *report : {"16666\n", "16666", " +20000 x", "-1", "16666\n"})
        cb_notify_fbcn_interval(report);
    EXPECT_EQ(data.frame_cnt, 5);
}

struct Pipes : testing::Test {
    test_device device;
    monitored_nodes nodes;

    void SetUp() override {
        ASSERT_EQ(init_event_manager(), 0);
        record_events();
        publish_statistics();
        nodes = {kernel_node_open(device_panel_node), kernel_node_open(device_interval_node)};
        ASSERT_GE(nodes.panel.fd, 0);
        ASSERT_FALSE(nodes.panel.rewind);
    }

    void TearDown() override {
        kernel_node_close(&nodes.panel);
        kernel_node_close(&nodes.interval);
    }
};

TEST_F(Pipes, GiveOneReportAWakeUpPanelFirst) {
    const int fd = device_open_node(device.root, device_interval_node);
    ASSERT_GE(fd, 0);
    for (const int interval : {16666, 33333, 16666})
        EXPECT_EQ(device_report_interval(fd, interval), 0);
    close(fd);  // a writer that goes leaves its reports behind
    EXPECT_EQ(device_report_panel(device.root, false), 0);
    monitor_kernel_nodes(&nodes);
    EXPECT_EQ(take_raised(), ids{80});
    EXPECT_EQ(data.frame_cnt, 1);
    monitor_kernel_nodes(&nodes);
    EXPECT_EQ(stats.samples[1], 3333u);
    monitor_kernel_nodes(&nodes);
    EXPECT_EQ(data.frame_cnt, 3);
}

TEST_F(Pipes, CutWhatIsTooLong) {
    const std::string path = device.root + device_interval_node;
    std::ofstream(path) << "16666" << std::string(300, ' ') << "\n" << std::flush;
    monitor_kernel_nodes(&nodes);
    EXPECT_EQ(data.frame_cnt, 1);
    EXPECT_EQ(stats.samples[0], 1666u);
}

TEST(MissingNodes, AreLeftOut) {
    test_device device;
    ASSERT_EQ(init_event_manager(), 0);
    publish_statistics();
    unlink((device.root + device_panel_node).c_str());
    const monitored_nodes nodes = {kernel_node_open(device_panel_node),
                                   kernel_node_open(device_interval_node)};
    EXPECT_EQ(nodes.panel.fd, -1);
    const int fd = device_open_node(device.root, device_interval_node);
    device_report_interval(fd, 16666);
    EXPECT_EQ(monitor_kernel_nodes(&nodes), 0);
    EXPECT_EQ(data.frame_cnt, 1);
    EXPECT_TRUE(logged_messages().empty());
}

// A host's attributes that signal as a phone's do: the two names of the host.
TEST(PollAttributes, AreReadFromTheirStartEachTime) {
    test_device device;
    if (unshare(geteuid() == 0 ? CLONE_NEWUTS : CLONE_NEWUSER | CLONE_NEWUTS) != 0)
        GTEST_SKIP() << "no host-name namespace of one's own here";
    const std::string panel = "/proc/sys/kernel/domainname";
    const std::string interval = "/proc/sys/kernel/hostname";
    for (const auto &[node, attribute] :
         {std::pair{device_panel_node, panel}, std::pair{device_interval_node, interval}}) {
        std::filesystem::remove(device.root + node);
        std::filesystem::create_symlink(attribute, device.root + node);
    }
    ASSERT_EQ(init_event_manager(), 0);
    record_events();
    publish_statistics();
    const monitored_nodes nodes = {kernel_node_open(device_panel_node),
                                   kernel_node_open(device_interval_node)};
    ASSERT_TRUE(nodes.panel.rewind);
    std::ofstream set_panel(panel);
    std::ofstream set_interval(interval);
    if (!set_panel || !set_interval)
        GTEST_SKIP() << "the host's names cannot be written here";
    const auto set = [](const std::string &path, const char *value) {
        std::ofstream(path) << value << std::flush;
    };
    set(panel, "panel_power_on = 0");
    monitor_kernel_nodes(&nodes);
    EXPECT_EQ(take_raised(), ids{80});
    for (int i = 1; i <= 3; ++i) {
        set(interval, i % 2 != 0 ? "16666" : "33333");
        monitor_kernel_nodes(&nodes);
        EXPECT_EQ(data.frame_cnt, i);
    }
    set(panel, "panel_power_on = 1");
    set(interval, "20000");
    monitor_kernel_nodes(&nodes);
    EXPECT_EQ(take_raised(), ids{81});
    EXPECT_EQ(data.frame_cnt, 4);
}

}  // namespace
