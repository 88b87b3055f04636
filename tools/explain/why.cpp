#include "tools/explain/why.h"

#include <algorithm>
#include <string>
#include <utility>

#include "tools/explain/caps_why.h"
#include "tools/explain/features_why.h"

namespace {

// What is said more than once is said once, with how often.
std::vector<decision> fold_repeated(std::vector<decision> made) {
    std::vector<std::string> texts;
    std::vector<decision> folded;
    if (made.size() < 2)
        return made;
    for (decision &each : made) {
        const std::string text = decision_text(each);
        const auto same = std::find(texts.begin(), texts.end(), text);
        if (same != texts.end()) {
            ++folded[static_cast<size_t>(same - texts.begin())].times;
            continue;
        }
        texts.push_back(text);
        folded.push_back(std::move(each));
    }
    return folded;
}

}  // namespace

std::vector<decision> why_take(daemon_state *state, const step &taken) {
    std::vector<decision> made;
    // Nearly every interval brings about nothing.
    if (taken.taken.kind == happening_kind::interval && taken.records.empty()) {
        daemon_state_take(state, taken);
        return made;
    }
    const daemon_state before = *state;
    daemon_state_take(state, taken, true);
    explain_features(before, *state, taken, &made);
    explain_analyser(before, *state, taken, &made);
    if (std::any_of(taken.records.begin(), taken.records.end(), record_is_refused)) {
        *state = before;
        daemon_state_take(state, taken);
    }
    return fold_repeated(std::move(made));
}
