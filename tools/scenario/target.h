// Who takes the happenings of a scenario: the simulator in this process, or a virtual device. A
// process has at most one simulated daemon.
#pragma once

#include <string>
#include <vector>

#include "tools/recording/timeline.h"
#include "tools/scenario/scenario.h"

struct player {
    // Starts the daemon on a device where what the scenario takes away is missing. Empty, or what
    // went wrong. A start that fails as a scenario wants it is a record.
    std::string (*start)(const std::vector<happening> &before);
    // Lets one thing happen. Empty, or what went wrong.
    std::string (*play)(const happening &what);
    // What came out since the last call, in order.
    std::vector<timeline_entry> (*take)();
    void (*stop)();
    // How long to wait for what is expected: where time is real, records come when they come.
    int patience_ms;
};

// The simulator, on the image of a device.
player make_simulator_player();

// A fresh virtual device at `root`, with time `speed` times as fast as it is. Its daemon ends with
// the scenario, or with this program, unless it is to stay.
player make_device_player(const std::string &root, double speed, bool stay = false);
