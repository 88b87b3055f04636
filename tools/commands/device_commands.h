// The commands of virtual devices: device, watch, play, day.
#pragma once

#include <string>

#include "tools/commands/command_context.h"

// Adds them, as `add_commands` has it.
void add_device_commands(CLI::App *parent, command_context *context);
