// dvxctl doctor.
#pragma once

#include <string>

#include "tools/commands/cli_fwd.h"

// Registers it.
void add_doctor_command(CLI::App *parent, const std::string *root, int *exit_code);
