// Why caps move and measurements begin: the analyser's decisions.
#pragma once

#include <vector>

#include "tools/explain/daemon_state.h"
#include "tools/explain/decision.h"

// Adds those of a step. `before` is what was known before it; `after` is what is known behind it,
// where everything that was asked of the hardware was done.
void explain_analyser(const daemon_state &before, const daemon_state &after, const step &taken,
                      std::vector<decision> *made);
