// The commands that send a message, a word each, and the list of events.
#pragma once

#include <string>

#include "tools/commands/cli_fwd.h"

// Adds them, as `add_commands` has it.
void add_message_commands(CLI::App *parent, const std::string *root, int *exit_code);
