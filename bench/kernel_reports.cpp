// A report of a real poll attribute up to the decision, against poll, read and rewind alone. The
// attribute is the host's name, which the run has to itself.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <mutex>

#include "bench/setup.h"
#include "core/event_manager.h"
#include "device/virtual_device.h"
#include "ipc/kernel_event_monitor.h"

namespace {

constexpr char attribute[] = "/proc/sys/kernel/hostname";
constexpr char panel_attribute[] = "/proc/sys/kernel/domainname";

void link_attribute(const char *node, const char *to) {
    std::error_code error;
    std::filesystem::remove(bench_device() + node, error);
    std::filesystem::create_symlink(to, bench_device() + node, error);
}

void report_interval(int fd) {
    if (pwrite(fd, "16700", 5, 0) != 5)
        abort();
}

void kernel_report(benchmark::State &state) {
    bench_set_up_daemon();
    notify_event(EV_MODE_GAME_DEFAULT_EXIT);
    link_attribute(device_interval_node, attribute);
    link_attribute(device_panel_node, panel_attribute);
    const int fd = open(attribute, O_WRONLY | O_CLOEXEC);
    monitored_nodes nodes = {kernel_node_open(device_panel_node),
                             kernel_node_open(device_interval_node)};
    if (fd < 0 || nodes.interval.fd < 0 || access(attribute, W_OK) != 0) {
        state.SkipWithError("needs a host-name namespace of its own");
        return;
    }
    for (auto _ : state) {
        report_interval(fd);
        monitor_kernel_nodes(&nodes);
    }
    kernel_node_close(&nodes.panel);
    kernel_node_close(&nodes.interval);
    close(fd);
}
BENCHMARK(kernel_report);

void kernel_report_floor(benchmark::State &state) {
    const int fd = open(attribute, O_WRONLY | O_CLOEXEC);
    pollfd waits[2] = {{open(panel_attribute, O_RDONLY | O_CLOEXEC), POLLPRI | POLLERR, 0},
                       {open(attribute, O_RDONLY | O_CLOEXEC), POLLPRI | POLLERR, 0}};
    char report[32];
    if (fd < 0) {
        state.SkipWithError("needs a host-name namespace of its own");
        return;
    }
    for (auto _ : state) {
        report_interval(fd);
        poll(waits, 2, -1);
        benchmark::DoNotOptimize(read(waits[1].fd, report, sizeof(report)));
        lseek(waits[1].fd, 0, SEEK_SET);
    }
    for (const pollfd &wait : waits)
        close(wait.fd);
    close(fd);
}
BENCHMARK(kernel_report_floor);

}  // namespace
