// The commands of `dvxctl device`.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

// Adds the commands to `parent`. `root` is the device's directory and outlives the parsing; what a
// command answers becomes `*exit_code`.
void add_device_commands(CLI::App *parent, const std::string *root, int *exit_code);
