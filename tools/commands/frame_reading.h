// What the commands that read frame files have in common.
#pragma once

#include <string>

#include "tools/commands/command_context.h"
#include "tools/frames/frame_file.h"

// Adds the options that overrule what a file says; `options` outlives the parsing.
void frame_add_options(CLI::App *command, frame_options *options);

// Format, column, unit and application in words.
std::string frame_describe(const frame_file &file);

// Says why a file cannot be read, in one line. The exit status.
int frame_fail_reading(const std::string &path, const frame_file &file);
