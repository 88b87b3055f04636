// Other processes, as far as /proc shows them to us.
#pragma once

#include <string>
#include <vector>

// Process ids of those that run under a name.
std::vector<int> processes_named(const std::string &name);

// Process id of one of that name that has the file open; 0 where there is none.
int process_that_has_open(const std::string &name, const std::string &path);

// A variable of a process's environment; empty where it is not set or not shown to us.
std::string process_environment(int process, const std::string &name);

// Whether a process is in the network that this program is in, as far as is shown to us.
bool process_shares_network(int process);

// Seconds since it started; 0: not known.
double process_age_s(int process);

// Whether a process stands still, as after SIGSTOP or under a debugger.
bool process_is_stopped(int process);
