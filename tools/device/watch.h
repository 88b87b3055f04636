// `dvxctl watch`: a device's timeline while it is written.
#pragma once

#include <string>

// Follows the device at `root` until it is gone or nobody reads any more; with `brief` without the
// daemon's book-keeping, with `why` with each line of the log in words. The exit status: 0 when the
// reader went away, else 1 with a line that says why.
int watch_device(const std::string &root, bool brief, bool why);
