// Kernel nodes as pipes, stepped report by report.
#include "ipc/kernel_event_monitor.h"

#include <gtest/gtest.h>
#include <unistd.h>

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

struct Pipes : testing::Test {
    test_device device;

    void SetUp() override {
        ASSERT_EQ(init_event_manager(), 0);
        record_events();
        publish_statistics();
    }
};

TEST_F(Pipes, GiveOneReportAWakeUpPanelFirst) {
    monitored_nodes nodes = {kernel_node_open(device_panel_node),
                             kernel_node_open(device_interval_node)};
    // A writer that goes leaves its reports behind; what is too long is cut.
    const int fd = device_open_node(device.root, device_interval_node);
    for (const int interval_us : {16666, 33333})
        EXPECT_EQ(device_report_interval(fd, interval_us), 0);
    close(fd);
    std::ofstream(device.root + device_interval_node) << "16666" << std::string(300, ' ') << "\n"
                                                      << std::flush;
    EXPECT_EQ(device_report_panel(device.root, false), 0);
    monitor_kernel_nodes(&nodes);
    EXPECT_EQ(take_raised(), ids{80});
    EXPECT_EQ(data.frame_cnt, 1);
    monitor_kernel_nodes(&nodes);
    EXPECT_EQ(stats.samples[1], 3333u);
    monitor_kernel_nodes(&nodes);
    EXPECT_EQ(data.frame_cnt, 3);
    EXPECT_EQ(stats.samples[2], 1666u);
    kernel_node_close(&nodes.panel);
    kernel_node_close(&nodes.interval);
}

TEST_F(Pipes, OneThatIsMissingIsLeftOut) {
    unlink((device.root + device_panel_node).c_str());
    const monitored_nodes nodes = {kernel_node_open(device_panel_node),
                                   kernel_node_open(device_interval_node)};
    EXPECT_EQ(nodes.panel.fd, -1);
    device_report_interval(device_open_node(device.root, device_interval_node), 16666);
    EXPECT_EQ(monitor_kernel_nodes(&nodes), 0);
    EXPECT_EQ(data.frame_cnt, 1);
    EXPECT_TRUE(logged_messages().empty());
}

}  // namespace
