#include "tools/explain/why.h"

#include <stdio.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "tools/base/shown.h"
#include "tools/explain/sentences.h"

void add_decision(std::vector<decision> *made, const moment &now, decision_kind kind,
                  const std::string &text, const std::string &detail) {
    made->push_back({now.time_ns, kind, text, detail});
}

namespace {

// What is said more than once is said once, with how often.
std::vector<decision> fold_repeated(std::vector<decision> made) {
    std::vector<decision> folded;
    for (size_t i = 0; i < made.size(); ++i) {
        const auto is_same = [&](const decision &each) {
            return each.text == made[i].text && each.detail == made[i].detail;
        };
        if (std::any_of(made.begin(), made.begin() + static_cast<long>(i), is_same))
            continue;
        const long times = std::count_if(made.begin(), made.end(), is_same);
        folded.push_back(made[i]);
        if (times > 1)
            folded.back().text += ", " + std::to_string(times) + " times";
    }
    return folded;
}

}  // namespace

std::vector<decision> why_take(daemon_state *state, const moment &now) {
    std::vector<decision> made;
    // Nearly every interval brings about nothing.
    if (now.kind == moment_interval && now.came.empty()) {
        daemon_state_take(state, now);
        return made;
    }
    const daemon_state before = *state;
    daemon_state_take(state, now);
    explain_features(before, *state, now, &made);
    explain_analyser(before, *state, now, &made);
    return fold_repeated(std::move(made));
}

const char *decision_kind_word(decision_kind kind) {
    constexpr const char *words[] = {"caps", "measuring", "analyser", "rate",    "image", "thermal",
                                     "app",  "power",     "service",  "failure", "other"};
    static_assert(std::size(words) == decision_other + 1);
    return words[kind];
}

nlohmann::ordered_json why_describe(const decision &made) {
    const int64_t time_ms = made.time_ns / 1000000;
    return {{"t_s", static_cast<double>(time_ms) / 1e3},
            {"kind", decision_kind_word(made.kind)},
            {"text", made.text},
            {"detail", made.detail}};
}

std::string decision_text(const decision &made) {
    char time[32];
    snprintf(time, sizeof(time), "+%.3f", static_cast<double>(made.time_ns) / 1e9);
    std::string text = std::string(time) + "  " + shown(made.text);
    if (!made.detail.empty())
        text += "\n" + std::string(decision_indent, ' ') + shown(made.detail);
    return text;
}
