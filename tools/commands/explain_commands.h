// dvxctl why and status.
#pragma once

#include <string>

#include "tools/commands/command_context.h"

// Prints each decision, of a recording or a log, or of the daemon on `root` as it goes on where
// `path` is empty. The exit status: 0; 2 for what cannot be read; 3 where no daemon runs.
int why_command(const std::string &path, const std::string &root, bool json);

// Prints the state of the daemon on `root`, or from a recording or a log where `file` is not empty;
// the same.
int status_command(const std::string &root, const std::string &file, bool json);

// Registers them.
void add_explain_commands(CLI::App *parent, command_context *context);
