// The commands that take up recordings: replay, report, export.
#pragma once

#include <string>

#include "tools/base/cli_fwd.h"

// Adds them, as `add_commands` has it.
void add_replay_commands(CLI::App *parent, const std::string *root, int *exit_code);
