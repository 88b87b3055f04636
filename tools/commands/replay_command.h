// dvxctl replay.
#pragma once

#include <string>
#include <vector>

#include "tools/commands/command_context.h"

struct replay_options {
    bool compare = false;               // hold what follows against what was recorded
    std::vector<std::string> settings;  // NAME=VALUE
    bool why = false;                   // each decision in a sentence
    bool json = false;
};

// Its exit status: 0; 1 where --compare finds a difference; 2 for words and files of no use.
int replay_command(const std::string &path, const replay_options &options);

// Registers it.
void add_replay_command(CLI::App *parent, command_context *context);
