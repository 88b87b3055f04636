// Who takes the happenings of a scenario: the simulator in this process, or a virtual device. A
// process has at most one simulated daemon.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/base/exit_status.h"
#include "tools/recording/happening.h"
#include "tools/recording/record.h"

struct target {
    // Starts the daemon on a device where what the scenario takes away is missing. A start that
    // fails as a scenario wants it is a record.
    std::function<result(const std::vector<happening> &before)> start;
    // Lets one thing happen.
    std::function<result(const happening &given)> take_up;
    // What came out since the last call, in order.
    std::function<std::vector<record>()> records;
    std::function<void()> stop;
    // How long to wait for what is expected: where time is real, records come when they come.
    int patience_ms = 0;
};

// The simulator, on the image of a device.
target make_simulator_target();

// A fresh virtual device at `root`, with time `speed` times as fast as it is. Its daemon ends with
// the scenario, or with this program, unless it is to stay.
target make_device_target(const std::string &root, double speed, bool stay = false);
