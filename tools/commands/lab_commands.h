// `dvxctl lab`: games in closed loop, and tunables that suit a device.
#pragma once

#include <string>

#include "tools/commands/command_context.h"

// Adds the command and its own; `exit_code` gets what the one that was given came to: 0; 1 where a
// cap was left behind or no set is good enough; 2 for words and files of no use.
void add_lab_commands(CLI::App *app, command_context *context);
