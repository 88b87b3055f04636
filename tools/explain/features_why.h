// Why the display's rate, the image engine and the other features change.
#pragma once

#include <vector>

#include "tools/explain/daemon_state.h"
#include "tools/explain/decision.h"

// Adds the decisions of a step; `before` and `after` as of explain_analyser.
void explain_features(const daemon_state &before, const daemon_state &after, const step &taken,
                      std::vector<decision> *made);
