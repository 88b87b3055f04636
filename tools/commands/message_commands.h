// The commands that send a message, a word each, and the list of events.
#pragma once

#include <string>

#include "tools/commands/command_context.h"

// Adds them, as `add_commands` has it.
void add_message_commands(CLI::App *parent, command_context *context);
