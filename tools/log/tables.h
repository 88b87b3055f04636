// The parts of the table of log lines, in the order of the daemon's life; their rows stand in the
// order of ids.h. Constant data.
#pragma once

#include <span>

#include "tools/log_lines.h"

extern const std::span<const log_row> log_start_lines;     // tools/log/start_lines.cpp
extern const std::span<const log_row> log_client_lines;    // tools/log/client_lines.cpp
extern const std::span<const log_row> log_resource_lines;  // tools/log/resource_lines.cpp
extern const std::span<const log_row> log_feature_lines;   // tools/log/feature_lines.cpp
extern const std::span<const log_row> log_analyser_lines;  // tools/log/analyser_lines.cpp
extern const std::span<const log_row> log_caps_lines;      // tools/log/caps_lines.cpp
