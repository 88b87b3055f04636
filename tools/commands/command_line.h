// The command line of dvxctl, whatever commands it is given.
#pragma once

#include <string>
#include <vector>

#include "tools/commands/command_context.h"

// Adds commands to `parent`.
using add_commands = void (*)(CLI::App *parent, command_context *context);

// Puts the command line together: help, version and root, then the commands.
void command_line_build(CLI::App *app, command_context *context,
                        const std::vector<add_commands> &groups);

// The commands directly below one, in the order of its help.
std::vector<const CLI::App *> command_line_below(const CLI::App *command);

// The options of the commands above one, which hold for it too; not those of dvxctl itself.
std::vector<const CLI::Option *> command_line_shared(const CLI::App *command);

// The command and what stands below it are of no use without a root.
void command_line_needs_root(CLI::App *command, command_context *context);

// Reads the words, runs what they say, and says what is wrong with them. dvxctl's exit status.
int command_line_run(int argc, char **argv, const std::vector<add_commands> &groups);
