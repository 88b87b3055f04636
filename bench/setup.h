// What the benchmarks share: the parts of the daemon that they measure, set up once.
#pragma once

#include <cstdint>
#include <string>

// A virtual device for the time of the run, with DVXD_ROOT set.
const std::string &bench_device(void);

// The event manager, the frame-rate manager and the frame interval analyser on that device.
void bench_set_up_daemon(void);

// Allocations of this process so far.
int64_t allocations(void);
