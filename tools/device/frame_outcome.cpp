#include "tools/device/frame_outcome.h"

#include <stdio.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>

#include "device/virtual_device.h"

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

// Whether a line is of the analyser's locks.
bool take_lock(frame_outcome *outcome, const std::string &text) {
    unsigned lock = 0;
    char word[16];
    if (sscanf(text.c_str(), "FIA lock%u %15s", &lock, word) != 2 || lock >= frame_locks)
        return false;
    outcome->locked[lock] = std::string(word) == "locked";
    return true;
}

void take_log(frame_outcome *outcome, const std::string &text) {
    unsigned streak = 0;
    if (take_lock(outcome, text))
        note_locks(outcome);
    else if (sscanf(text.c_str(), "Successive Jank: %u", &streak) == 1)
        outcome->janks += streak;
    else if (text.starts_with("PM Complete!"))
        ++outcome->complete;
    else if (text.starts_with("PM Over"))
        ++outcome->given_up;
    else if (text.starts_with("PM Restart!") || text.ends_with("PM Start"))
        ++outcome->again;
}

void take_cap(frame_outcome *outcome, const effect &change) {
    if (!change.setting.starts_with(cap_words))
        return;
    std::vector<std::string> &values = outcome->caps[change.setting.substr(sizeof(cap_words) - 1)];
    if (values.empty())
        values.push_back(change.before);
    values.push_back(change.value);
}

// "NANOSECONDS THREAD CALL"
timeline_entry call_of(const std::string &line) {
    const size_t thread = line.find(' ');
    const size_t call = thread == line.npos ? thread : line.find(' ', thread + 1);
    return {0, timeline_hardware, 0, call == line.npos ? "" : line.substr(call + 1), "", 0};
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
    int64_t offset = 0;
    for (const std::string &line : device_read_lines(root + device_calls_log, &offset))
        note_effect(&outcome.present, call_of(line));
    offset = 0;
    bool known = false;
    for (const std::string &line : device_read_lines(root + device_daemon_log, &offset)) {
        const size_t text = line.find("FIA lock");
        if (text != line.npos)
            known |= take_lock(&outcome, line.substr(text));
    }
    if (known)
        note_locks(&outcome);
    return outcome;
}

void frame_outcome_take(frame_outcome *outcome) {
    for (const timeline_entry &entry : timeline_read(&outcome->line)) {
        if (entry.kind == timeline_log)
            take_log(outcome, entry.text);
        take_cap(outcome, note_effect(&outcome->present, entry));
    }
}

std::string frame_outcome_end(frame_outcome *outcome) {
    usleep(2 * timeline_hold_back_ns / 1000);  // until the last entry is old enough
    frame_outcome_take(outcome);
    std::string text = "caps: " + describe_caps(*outcome) + "\n";
    text += "measurements: " + std::to_string(outcome->complete) + " complete, " +
            std::to_string(outcome->again) + " begun again, " + std::to_string(outcome->given_up) +
            " given up\n";
    text += "janks: " + std::to_string(outcome->janks) + "\n";
    return text + describe_suspension(*outcome);
}
