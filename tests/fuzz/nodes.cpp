// Texts of the kernel nodes.
#include <algorithm>

#include "ipc/kernel_event_monitor.h"
#include "tests/fuzz/live_daemon.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    start_live_daemon();
    char report[kernel_report_size] = {};
    memcpy(report, data, std::min(size, sizeof(report) - 1));
    happening reported;
    reported.value = report;
    for (const happening_kind kind : {happening_kind::panel, happening_kind::interval}) {
        reported.kind = kind;
        take_up(reported);
    }
    simulator_take();
    return 0;
}
