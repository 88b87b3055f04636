// What can be seen of a daemon from outside: its log, a phone's nodes, the files of a virtual
// device.
#pragma once

#include <functional>
#include <string>

#include "tools/base/exit_status.h"
#include "tools/device/follow.h"

struct capture_sources {
    std::string root;  // of a virtual device; empty: this machine is the phone
    std::string log;   // a file, "-" for standard input; empty: the virtual device's own, or none
};

// Gives what is seen, as lines of a recording, until the limit or the log's end.
result capture(const capture_sources &sources, const follow_limit &limit,
               const std::function<bool(const std::string &line)> &take);
