// The state of a daemon, as far as its notes or its log tell.
#pragma once

#include <string>

// dvxctl's command: of the daemon on `root`, or from a log, "-" for standard input, where `log` is
// not empty. Its exit status: 0; 2 for what cannot be read; 3 where no daemon runs.
int status_command(const std::string &root, const std::string &log, bool json);
