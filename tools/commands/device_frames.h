// dvxctl device frames: a recording played into a device, and what followed.
#pragma once

#include "tools/commands/command_context.h"

// Adds it to `device`. The exit status: 0, 1 when a file could not be played, 2 when it cannot be
// read, 130 after Ctrl-C.
void add_device_frames_command(CLI::App *device, command_context *context);
