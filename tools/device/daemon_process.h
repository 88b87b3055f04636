// The daemon that runs on a device, whoever started it.
#pragma once

#include <string>

// Process id of the daemon whose device is at `root`: the device's own, or one that somebody
// started by hand; 0 where there is none.
int daemon_process(const std::string &root);

// Process id of a daemon that has the file open, as its log or its recording; 0 where there is
// none, or none that is shown to us.
int daemon_that_writes(const std::string &path);

// A variable of a process's environment; empty where it is not set or not shown to us.
std::string process_environment(int process, const std::string &name);

// Whether a process is in the network that this program is in, as far as is shown to us.
bool process_shares_network(int process);

// What /proc/PID/stat says of a process behind its name: its state, its parent and so on; empty
// where there is none.
std::string process_stat(int process);

// Whether a process stands still, as after SIGSTOP or under a debugger.
bool process_is_stopped(int process);
