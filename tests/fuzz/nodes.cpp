// Texts of the kernel nodes.
#include <string.h>

#include <algorithm>
#include <cstdint>

#include "ipc/kernel_event_monitor.h"
#include "tests/fuzz/live_daemon.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    start_live_daemon();
    char report[kernel_report_size] = {};
    memcpy(report, data, std::min(size, sizeof(report) - 1));
    cb_notify_panel_power_states(report);
    cb_notify_fbcn_interval(report);
    return 0;
}
