// The thermal engine of the hardware library: its binding, the wait until it has loaded its
// configuration descriptors, and the one door through which configurations are switched.
//
// Bound at load time, before main, which also starts the check thread; the two flags only ever go
// from clear to set. Any thread may switch. Nothing is locked.
#pragma once

#include <cstdint>

// Binds the library and starts the check thread, once. 0; -EINVAL or -EFAULT with log lines. Load
// time and start-up.
int init_thermal_engine_support(void);

// Switches a named thermal configuration on (1) or off (0). The library's result, nonzero on
// failure; -EINVAL while the engine is not bound, -EBUSY until its descriptors are loaded: a
// request is dropped then. Exported to the libraries that the daemon loads.
extern "C" int32_t enable_thermal_config(const char *name, int32_t on);

// What the check thread has seen of the count of descriptors.
struct thermal_poll {
    int32_t last_count;
    int32_t stable;  // polls in which it stayed
};

// The start of the check thread: nothing has been seen yet.
thermal_poll begin_thermal_polls(void);

// One poll; the step of the check thread. True once the count has been stable for long enough, when
// the descriptors count as loaded and EV_THERMAL_ENGINE_ACTIVATED has been raised.
bool poll_thermal_engine(thermal_poll *poll);

// The check thread; ends when the descriptors are loaded or after 300 polls.
void *do_check_thermal_engine_activation(void *);
