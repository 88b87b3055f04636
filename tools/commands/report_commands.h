// dvxctl report and export.
#pragma once

#include <string>

#include "tools/commands/command_context.h"

// Registers them.
void add_report_commands(CLI::App *parent, command_context *context);
