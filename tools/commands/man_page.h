// Manual pages of dvxctl, from what its own help knows.
#pragma once

#include <string>

#include "tools/commands/command_context.h"

// The page of a command, or of dvxctl itself, in mdoc. `date` as "November 23, 2026".
std::string man_page(const CLI::App *command, const std::string &date);

// Its name: "dvxctl-device-panel".
std::string man_page_name(const CLI::App *command);
