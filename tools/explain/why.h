// What a daemon decided, step by step. What a source does not tell is said to be not known.
#pragma once

#include <vector>

#include "tools/explain/daemon_state.h"
#include "tools/explain/decision.h"

// What was decided in a step; `state` is what was known before it, and is brought up to it.
std::vector<decision> why_take(daemon_state *state, const step &taken);
