// What dvxctl's exit status says.
#pragma once

constexpr int exit_found = 1;      // it could not be done, or what was asked about is so
constexpr int exit_input = 2;      // words or files of no use
constexpr int exit_no_daemon = 3;  // no daemon runs
