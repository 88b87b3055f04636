// dvxctl record: one file of what a daemon took up and what came of it.
#pragma once

#include <string>

#include "tools/commands/command_context.h"

struct record_options {
    std::string root;  // of a virtual device; empty: this machine is the phone
    std::string out;
    std::string log;   // a log to take besides, "-" for standard input; empty: none
    double for_s = 0;  // 0: until Ctrl-C or the daemon's end
};

// Its exit status: 0; 1 where the recording could not be finished; 2 for words
// and files that are of no use; 3 where no daemon runs.
int record_command(const record_options &options);

// Registers it.
void add_record_command(CLI::App *parent, command_context *context);
