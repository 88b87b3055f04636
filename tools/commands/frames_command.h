// The commands that read frame files: `dvxctl frames` and `dvxctl device frames`.
#pragma once

#include <string>

#include "tools/commands/command_context.h"

// Adds `frames` to `app`. What it answers becomes `context->exit_code`: 0, or 2 when a file cannot
// be read.
void add_frames_commands(CLI::App *app, command_context *context);

// Adds `frames` to `device`, whose root outlives the parsing: 0, 1 when a file could not be
// played, 2 when it cannot be read, 130 after Ctrl-C.
void add_device_frames_command(CLI::App *device, command_context *context);
