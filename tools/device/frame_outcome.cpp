#include "tools/device/frame_outcome.h"

#include <unistd.h>

#include <algorithm>
#include <iterator>

namespace {

constexpr char cap_words[] = "cap of ";
constexpr size_t values_shown = 8;

constexpr const char *lock_words[] = {"the screen was off", "a floating window was shown",
                                      "no game was in front", "VR was on"};
static_assert(std::size(lock_words) == frame_locks);

void note_locks(frame_outcome *outcome) {
    const bool suspended = std::find(std::begin(outcome->locked), std::end(outcome->locked),
                                     true) != std::end(outcome->locked);
    outcome->ever_suspended |= suspended;
    outcome->ever_awake |= !suspended;
    for (size_t i = 0; i < frame_locks; ++i)
        outcome->blamed[i] |= outcome->locked[i];
}

// Whether a record is a line of the analyser's locks.
bool take_lock(frame_outcome *outcome, const record &came) {
    const bool locks = record_is_line(came, log_line::analyser_locked);
    const int32_t lock = record_integer(came, 0);
    if ((!locks && !record_is_line(came, log_line::analyser_unlocked)) || lock < 0 ||
        lock >= frame_locks)
        return false;
    outcome->locked[lock] = locks;
    return true;
}

void take_cap(frame_outcome *outcome, const effect &change) {
    if (!change.setting.starts_with(cap_words))
        return;
    std::vector<std::string> &values = outcome->caps[change.setting.substr(sizeof(cap_words) - 1)];
    if (values.empty())
        values.push_back(change.before);
    values.push_back(change.value);
}

std::string describe_caps(const frame_outcome &outcome) {
    std::string text;
    for (const auto &[name, values] : outcome.caps) {
        text += (text.empty() ? "" : "; ") + name + " ";
        const size_t hidden = values.size() > values_shown ? values.size() - values_shown : 0;
        for (size_t i = 0; i < values.size(); ++i) {
            if (i > 0 && i <= hidden)
                continue;
            text += (i == 0                          ? ""
                     : hidden > 0 && i == hidden + 1 ? " -> ... -> "
                                                     : " -> ") +
                    values[i];
        }
        text += " MHz";
    }
    return text.empty() ? "none changed" : text;
}

std::string describe_suspension(const frame_outcome &outcome) {
    if (!outcome.ever_suspended)
        return {};
    std::string reasons;
    for (size_t i = 0; i < frame_locks; ++i)
        if (outcome.blamed[i])
            reasons += (reasons.empty() ? "" : ", ") + std::string(lock_words[i]);
    return outcome.ever_awake
               ? "The analyser was suspended for a part of the time: " + reasons + ".\n"
               : "The analyser was suspended and looked at none of the frames: " + reasons + ".\n";
}

}  // namespace

frame_outcome frame_outcome_begin(const std::string &root) {
    frame_outcome outcome;
    outcome.line = timeline_open(root);
    outcome.present = make_effects();
    timeline before = timeline_from_start(root);
    bool known = false;
    std::vector<record> told = timeline_read(&before);
    told.insert(told.end(), before.held_back.begin(), before.held_back.end());
    for (const record &came : told) {
        note_effect(&outcome.present, came);
        known |= take_lock(&outcome, came);
    }
    if (known)
        note_locks(&outcome);
    return outcome;
}

void frame_outcome_take(frame_outcome *outcome) {
    for (const record &came : timeline_read(&outcome->line)) {
        if (take_lock(outcome, came))
            note_locks(outcome);
        figures_count(&outcome->figures, came);
        take_cap(outcome, note_effect(&outcome->present, came));
    }
}

std::string frame_outcome_end(frame_outcome *outcome) {
    usleep(2 * timeline_hold_back_ns / 1000);  // until the last record is old enough
    frame_outcome_take(outcome);
    const run_figures &figures = outcome->figures;
    std::string text = "caps: " + describe_caps(*outcome) + "\n";
    text += "measurements: " + std::to_string(figures.measurements) + " complete, " +
            std::to_string(figures.restarts + figures.returns) + " begun again, " +
            std::to_string(figures.given_up) + " given up\n";
    text += "janks: " + std::to_string(figures.janks) + "\n";
    return text + describe_suspension(*outcome);
}
