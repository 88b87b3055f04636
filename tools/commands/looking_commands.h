// The commands that look at a daemon from outside, on a desk or on a phone: record, why, status,
// doctor.
#pragma once

#include <string>

#include "tools/base/cli_fwd.h"

// Adds them, as `add_commands` has it.
void add_looking_commands(CLI::App *parent, const std::string *root, int *exit_code);
