// `dvxctl lab plan` and `dvxctl lab fit`: a game's work from recordings under known caps.
#pragma once

#include <functional>

#include "tools/commands/lab_options.h"

namespace CLI {
class App;
}

// Adds both below lab; each returns what runs it, once the options are there.
struct fit_subcommands {
    CLI::App *plan;
    CLI::App *fit;
    std::function<int()> run_plan;
    std::function<int()> run_fit;
};
fit_subcommands add_fit_commands(CLI::App *lab, lab_arguments *given);
