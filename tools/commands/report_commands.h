// dvxctl report and export.
#pragma once

#include <string>

#include "tools/commands/cli_fwd.h"

// Registers them.
void add_report_commands(CLI::App *parent, const std::string *root, int *exit_code);
