// The daemon as a process of its own: how soon it serves, what it holds, how often it wakes.
#pragma once

#include <string>

// Median of the times from fork to the start line, in milliseconds.
double measure_start_ms(int starts);

struct process_figures {
    long idle_kib;         // resident, once start-up is over
    long warm_kib;         // after a first hundredth of the load
    long after_load_kib;   // after 10^5 messages and 10^6 intervals
    double idle_wakeups;   // voluntary switches a second before any timer was armed
    double timer_wakeups;  // the same once one was
};

// Runs a daemon on a fresh device through all of it.
process_figures measure_process(void);
