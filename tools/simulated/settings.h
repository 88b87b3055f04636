// The analyser's figures by name: its tunables ("margin_percent"), and the levels of its frequency
// tables ("GPU.1", in the table's unit: kHz, of the GPU Hz).
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "simulator/simulator.h"
#include "tools/recording/recording.h"

using setting_list = std::vector<std::pair<std::string, int64_t>>;

// Every figure with its value.
setting_list settings_of(const simulated_figures &figures);

// Sets one. Empty, or what is wrong with the name or the value.
std::string setting_apply(simulated_figures *figures, const std::string &name, int64_t value);

// The same from "NAME=VALUE".
std::string setting_apply_text(simulated_figures *figures, const std::string &text);

// The same of many, which are right together too.
std::string settings_apply_all(simulated_figures *figures, const std::vector<std::string> &texts);

// The figures that a recording was made with, as its header has them. Empty, or what is wrong.
std::string settings_of_header(const recording_header &header, simulated_figures *figures);

// What is wrong with the figures together: the levels of a table fall from the first on. Empty
// where nothing is.
std::string settings_check(const simulated_figures &figures);
