// dvxctl frames.
#pragma once

#include "tools/commands/command_context.h"

// Adds it to `app`. What it answers becomes the exit status: 0, or 2 when a file cannot be read.
void add_frames_commands(CLI::App *app, command_context *context);
