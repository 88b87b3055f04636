// The kernel event monitor: one thread that waits on two kernel nodes, the display panel's power
// and the display's frame interval. A change of the panel becomes an event, an interval goes to the
// frame interval analysis; what either causes runs on this thread. Nothing is locked here.
#pragma once

#include "platform/kernel_node.h"

constexpr int kernel_report_size = 32;  // a longer report is cut

struct monitored_nodes {
    kernel_node panel;
    kernel_node interval;
};

// Starts the thread. 0, or -EINVAL with a log line.
int init_kevent_monitor(void);

// Waits for a report of either node and handles what there is, the panel first; the step of the
// thread. 0, or -1 when waiting fails.
int monitor_kernel_nodes(const monitored_nodes *nodes);

// The monitor's thread; ends, with its nodes closed, when waiting fails.
void *sync_notify_monitor(void *);

// A report of the panel's node: "panel_power_on = " and 1 for on. Raises EV_SCREEN_ON or
// EV_SCREEN_OFF when that is news.
void cb_notify_panel_power_states(const char *report);

// A report of the interval's node: microseconds. One that is not a number is skipped.
void cb_notify_fbcn_interval(const char *report);
