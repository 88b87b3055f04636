// Every command of dvxctl on a desk, in the order of its help.
#pragma once

#include "tools/commands/command_line.h"

extern const std::vector<add_commands> desk_commands;
