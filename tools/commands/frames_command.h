// The commands that read frame files: `dvxctl frames` and `dvxctl device frames`.
#pragma once

#include <string>

#include "tools/commands/cli_fwd.h"

// Adds `frames` to `app`. What it answers becomes `*exit_code`: 0, or 2 when a file cannot be read.
void add_frames_commands(CLI::App *app, const std::string *root, int *exit_code);

// Adds `frames` to `device`, whose root outlives the parsing: 0, 1 when a file could not be
// played, 2 when it cannot be read, 130 after Ctrl-C.
void add_device_frames_command(CLI::App *device, const std::string *root, int *exit_code);
