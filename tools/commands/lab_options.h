// What dvxctl lab's commands are told on the command line, and what follows from it.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tools/commands/command_context.h"
#include "tools/lab/search.h"

// What the words of the command line say.
struct lab_arguments {
    std::vector<std::string> games;
    std::string games_file;
    std::vector<std::string> settings;
    std::vector<double> panels;
    std::vector<std::string> picks = {"fit"};
    std::vector<int> buffers;
    std::vector<std::string> devices = {"default"};
    std::optional<double> base_mw;
    std::optional<double> limit_fps;
    std::string vary_from;
    std::string out;
    std::vector<std::string> files;
    lab_search search;
};

// Adds the options that all of them take.
void lab_add_model_options(CLI::App *command, lab_arguments *given);
void lab_add_set_option(CLI::App *command, lab_arguments *given);

// Brings what was given into the search's setup. Empty, or what is wrong.
std::string lab_prepare(lab_arguments *given);

// Takes the options of a search from its file, so that a merge needs none. What it has not, or not
// so, shows when the conditions are compared.
void lab_take_conditions(lab_arguments *given, std::map<std::string, std::string> conditions);
