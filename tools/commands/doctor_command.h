// dvxctl doctor.
#pragma once

#include <string>

#include "tools/commands/command_context.h"

// Registers it.
void add_doctor_command(CLI::App *parent, command_context *context);
