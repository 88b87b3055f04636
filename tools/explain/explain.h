// What the files behind why.h share: each looks at a step for its subject's decisions.
#pragma once

#include <vector>

#include "tools/explain/daemon_state.h"
#include "tools/explain/decision.h"

// `before` is what was known before the step; `after` is what is known behind it, where everything
// that was asked of the hardware was done.
void explain_analyser(const daemon_state &before, const daemon_state &after, const step &taken,
                      std::vector<decision> *made);
void explain_features(const daemon_state &before, const daemon_state &after, const step &taken,
                      std::vector<decision> *made);

// The worst answer to the step's calls of that name, and of that first argument where there is one;
// none where there was no such call, or its answer is not known.
std::optional<int32_t> answer_of(const step &taken, const char *call,
                                 const std::string &argument = {});
