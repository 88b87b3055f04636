// A page of documents for each command of dvxctl, from what its own help knows.
#pragma once

#include <string>

#include "tools/commands/command_context.h"

// In Markdown, as docs/ are written.
std::string command_page(const CLI::App *command);

// Its name: "dvxctl-device-panel".
std::string command_page_name(const CLI::App *command);
