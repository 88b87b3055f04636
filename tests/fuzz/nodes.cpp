// Texts of the kernel nodes.
#include <algorithm>

#include "ipc/kernel_event_monitor.h"
#include "tests/fuzz/live_daemon.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    start_live_daemon();
    char report[kernel_report_size] = {};
    memcpy(report, data, std::min(size, sizeof(report) - 1));
    simulator_panel_report(report);
    simulator_interval_report(report);
    simulator_take();
    return 0;
}
