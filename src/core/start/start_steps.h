// Start-up: brings the subsystems up in one order. All work happens on the threads and in the
// callbacks that the steps have set up. The executable runs it, once; so does a simulator of it.
#pragma once

// What comes before main: the extension library, then the thermal engine, whose check thread starts
// here.
void prepare_daemon(void);

// Runs the table of steps on the calling thread. 0 once the daemon serves, with the start line
// logged; -1 when a step has failed that it cannot do without.
int start_daemon(void);
