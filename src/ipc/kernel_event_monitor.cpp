#include "ipc/kernel_event_monitor.h"

#include <errno.h>
#include <poll.h>
#include <stdio.h>

#include "core/event_manager.h"
#include "core/log.h"
#include "fia/interval_decision.h"
#include "platform/recording.h"
#include "platform/thread.h"

namespace {

constexpr char panel_path[] = "/sys/class/power/sben/sben_event";
constexpr char interval_path[] = "/sys/class/power/fbcn/fbcn_intv";

// What the daemon believes of the panel until its node says otherwise. Monitor thread only.
constinit bool panel_off = false;

void handle_report(const kernel_node *node, recorded_kind kind,
                   void (*handle)(const char *report)) {
    char report[kernel_report_size] = {};
    kernel_node_read(node, report, sizeof(report));
    recording_begin(kind, report);
    handle(report);
    recording_end();
}

}  // namespace

void cb_notify_panel_power_states(const char *report) {
    int value = 0;
    if (sscanf(report, "panel_power_on = %d\n", &value) != 1)
        value = 0;
    const bool off = value != 1;
    if (off == panel_off)
        return;
    notify_event(off ? EV_SCREEN_OFF : EV_SCREEN_ON);
    panel_off = off;
}

void cb_notify_fbcn_interval(const char *report) {
    int interval_us;
    if (sscanf(report, "%d\n", &interval_us) == 1)
        notify_fia_interval_changed(interval_us);
}

int monitor_kernel_nodes(const monitored_nodes *nodes) {
    pollfd waits[] = {kernel_node_poll(&nodes->panel), kernel_node_poll(&nodes->interval)};
    if (poll(waits, 2, -1) == -1) {
        log_error("error in polling\n");
        return -1;
    }
    if (kernel_node_signalled(&nodes->panel, waits[0].revents))
        handle_report(&nodes->panel, recorded_panel, cb_notify_panel_power_states);
    if (kernel_node_signalled(&nodes->interval, waits[1].revents))
        handle_report(&nodes->interval, recorded_interval, cb_notify_fbcn_interval);
    return 0;
}

void *sync_notify_monitor(void *) {
    monitored_nodes nodes = {kernel_node_open(panel_path), kernel_node_open(interval_path)};
    while (monitor_kernel_nodes(&nodes) == 0) {
    }
    kernel_node_close(&nodes.panel);
    kernel_node_close(&nodes.interval);
    return nullptr;
}

int init_kevent_monitor(void) {
    if (thread_start("kevent_monitor", sync_notify_monitor) != 0) {
        log_error("Error initializing sync notify Thread\n");
        return -EINVAL;
    }
    return 0;
}
