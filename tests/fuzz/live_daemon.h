// The daemon that a fuzzer's inputs go to, in the simulator of its process.
#pragma once

#include <stdlib.h>

#include "device/virtual_device.h"
#include "simulator/simulator.h"

// Starts it once, with every debug line on.
inline void start_live_daemon(void) {
    static const int started = [] {
        const char *build = getenv("DVX_BUILD");
        return simulator_start(simulator_fresh_device(
            build != nullptr ? std::string(build) + "/device" : device_image_path()));
    }();
    if (started != 0)
        abort();
}
