// Decisions and states as JSON, with the fields of docs/recordings.md.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "tools/explain/status.h"

// A decision as a value, for whoever holds many.
nlohmann::ordered_json decision_json(const decision &made);

// The same on one line.
std::string decision_line(const decision &made);
std::string status_line(const status &known);
