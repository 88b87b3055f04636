// Each decision of a daemon in a sentence, with its numbers and its cause. What a source does not
// tell is said to be not known.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "tools/explain/daemon_state.h"

enum decision_kind {
    decision_caps,
    decision_measuring,
    decision_analyser,
    decision_rate,
    decision_image,
    decision_thermal,
    decision_app,
    decision_power,  // automode, low power, mitigation
    decision_service,
    decision_failure,
    decision_other,
};

struct decision {
    int64_t time_ns = 0;  // since the source's first moment
    decision_kind kind = decision_other;
    std::string text;
    std::string detail;  // empty: none
};

// What was decided in a moment; `state` is what was known before it, and is brought up to it.
std::vector<decision> why_take(daemon_state *state, const moment &now);

// "caps", "measuring" and so on, for whoever filters.
const char *decision_kind_word(decision_kind kind);

// "+61.204  text", and the detail beneath, indented as far.
constexpr size_t decision_indent = 9;
std::string decision_text(const decision &made);

// The same as an object: "t_s", "kind", "text", "detail".
nlohmann::ordered_json why_describe(const decision &made);

// dvxctl's command; an empty path follows the daemon on `root`. Its exit status.
int why_command(const std::string &path, const std::string &root, bool json);
