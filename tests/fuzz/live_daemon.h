// The whole daemon in this process, all handlers live, on a virtual device of its own; what it logs
// is formatted and dropped. Threads are real; the server's and the monitor's are not started, as
// the fuzzers are their input.
#pragma once

void start_live_daemon(void);
