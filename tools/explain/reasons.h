// Why a daemon decides: one table says of each reason its word, its kind and its sentences.
// docs/recordings.md lists them. Constant data; any thread may call.
#pragma once

#include <span>

enum class decision_kind {
    caps,
    measuring,
    analyser,
    rate,
    image,
    thermal,
    app,
    power,  // automode, low power, mitigation
    failure,
    other,
};

enum class reason {
    caps_lowered,       // enough intervals lie in the profile
    caps_raised_share,  // too few do
    caps_raised_rate,   // too few frames per second
    caps_raised_janks,  // too many intervals left the profile
    caps_moved,         // why is not known
    caps_restored,      // to where a scene had them

    measured,
    panel_too_fast,
    scene_faster,
    scene_slower,
    scene_uneven,
    scene_changed,
    poor_in_a_row,
    poor_since_good,
    suspended,
    resumed,

    rate_asked,  // by a requestor
    rate_lifted,
    rate_free,
    rate_unknown,

    app_mode,
    image_mode,
    thermal_on,
    thermal_off,
    low_power_off,
    low_power_on,
    low_power_extreme,
    mitigation_on,
    mitigation_off,
    automode_on,
    automode_off,

    logged,  // a line of the log says it; its word is the line's
};

// In the sentences {name} stands for a fact, {name:FORMAT} for a number in printf's format and
// {name:THING} for so many things, {moved} for what moved. A part in brackets is left out where it
// lacks a fact; of forms that a bar parts the first that lacks none counts.
struct reason_row {
    reason why;
    decision_kind kind;
    const char *word;
    const char *sentence;
    const char *detail;
};

// All of them, and one.
std::span<const reason_row> reason_rows();
const reason_row &reason_row_of(reason why);

// "caps", "measuring" and so on.
const char *decision_kind_word(decision_kind kind);
