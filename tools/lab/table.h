// The analyser's figures as the source of the daemon's table.
#pragma once

#include <string>

#include "simulator/simulator.h"

// src/fia/freq_tables.cpp with these figures.
std::string figures_source(const simulated_figures &figures);
