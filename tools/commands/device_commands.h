// The commands of virtual devices: device, watch, play, day.
#pragma once

#include <string>

#include "tools/commands/cli_fwd.h"

// Adds them, as `add_commands` has it.
void add_device_commands(CLI::App *parent, const std::string *root, int *exit_code);
