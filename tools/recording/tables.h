// The parts of the table of log lines, in the order of the daemon's life; their rows stand in the
// order of ids.h. Constant data.
#pragma once

#include <span>

#include "tools/recording/log_lines.h"

extern const std::span<const log_row> log_start_lines;     // tools/recording/start_lines.cpp
extern const std::span<const log_row> log_client_lines;    // tools/recording/client_lines.cpp
extern const std::span<const log_row> log_resource_lines;  // tools/recording/resource_lines.cpp
extern const std::span<const log_row> log_feature_lines;   // tools/recording/feature_lines.cpp
extern const std::span<const log_row> log_analyser_lines;  // tools/recording/analyser_lines.cpp
extern const std::span<const log_row> log_caps_lines;      // tools/recording/caps_lines.cpp
