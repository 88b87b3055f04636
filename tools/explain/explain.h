// What the files behind why.h share: each looks at a moment for its subject's decisions.
#pragma once

#include "tools/explain/why.h"

// Adds a decision of the moment.
void add_decision(std::vector<decision> *made, const moment &now, decision_kind kind,
                  const std::string &text, const std::string &detail = {});

// `before` and `after` are what was known before and is known after the moment.
void explain_analyser(const daemon_state &before, const daemon_state &after, const moment &now,
                      std::vector<decision> *made);
void explain_features(const daemon_state &before, const daemon_state &after, const moment &now,
                      std::vector<decision> *made);
