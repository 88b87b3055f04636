// Whether the callbacks in a daemon's log ran in the order of their registration, nested ones to
// their end first, on every thread.
#pragma once

#include <string>

struct callback_order {
    int callbacks;       // looked at, from the daemon's start line on
    std::string broken;  // the first line that came out of its turn, or empty
};

// For a log with debug lines on from the first one.
callback_order check_callback_order(const std::string &log);
