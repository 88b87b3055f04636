// The daemon that runs on a device, whoever started it.
#pragma once

#include <string>

// Process id of the daemon whose device is at `root`: the device's own, or one that somebody
// started by hand; 0 where there is none.
int daemon_process(const std::string &root);
