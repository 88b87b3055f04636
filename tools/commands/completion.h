// What a shell may offer behind the words of a dvxctl command, from what its own help knows.
#pragma once

#include <string>

#include "tools/commands/command_context.h"

// A function of POSIX shell, `_dvxctl_words WORD...`, that prints a line a word that may follow;
// none where a file may.
std::string completion_function(const CLI::App *app);

// The whole file for bash, and for zsh.
std::string completion_for_bash(const CLI::App *app);
std::string completion_for_zsh(const CLI::App *app);
