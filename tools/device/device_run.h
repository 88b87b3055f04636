// A virtual device's daemon and stand-in services: started and stopped as one, with what went wrong
// in words.
#pragma once

#include <string>

#include "tools/base/exit_status.h"

// Says that the root is no virtual device, and how it becomes one. The exit status.
int fail_without_device(const std::string &root);

// Starts dvxd on the device at `root`, and the stand-ins where none serve yet. With `die_with_me`
// both end when this program does. The daemon's process id, or what went wrong.
result start_device(const std::string &root, bool die_with_me, int *pid);

// Stops both.
result stop_device(const std::string &root);
