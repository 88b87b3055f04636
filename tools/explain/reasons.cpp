#include "tools/explain/reasons.h"

#include <cstddef>
#include <iterator>

namespace {

// What is said of caps that moved, and of caps that go back to full.
#define CAPS_MOVED                                                            \
    "{moved} (levels {levels_from} -> {levels_to})[; {profile_fps} fps game]" \
    "[ \"{game}\"]"
#define CAPS_RELEASED "caps released: " CAPS_MOVED
#define REPORT "{share} % of the last {judged} intervals lay in the profile, "

constexpr reason_row rows[] = {
    {reason::caps_lowered, decision_kind::caps, "caps_lowered",
     "caps {step}: " REPORT "and {needed} % let them go down",
     CAPS_MOVED "|which one is not in the log"},
    {reason::caps_raised_share, decision_kind::caps, "caps_raised_share",
     "caps {step}: " REPORT "and {needed} % are wanted|caps {step}: " REPORT
     "how many are wanted is not known",
     CAPS_MOVED "|which one is not in the log"},
    {reason::caps_raised_rate, decision_kind::caps, "caps_raised_rate",
     "caps {step}: {fps} frames per second since caps moved last, {wanted} are wanted",
     CAPS_MOVED "|which one is not in the log"},
    {reason::caps_raised_janks, decision_kind::caps, "caps_raised_janks",
     "caps {step}: {left} of the last {window} intervals left the profile, {allowed} are allowed",
     CAPS_MOVED "|which one is not in the log"},
    {reason::caps_moved, decision_kind::caps, "caps_moved",
     "caps {step}: why is not known, as debug lines are off", CAPS_MOVED},
    {reason::caps_restored, decision_kind::caps, "caps_restored",
     "caps as they were: the intervals are those of scene {scene}", CAPS_MOVED},

    {reason::measured, decision_kind::measuring, "measured",
     "the measurement is complete: most of its intervals are of {profile_fps} frames per second, "
     "{share} % lie in the profile",
     "[kept as scene {scene}; ]from now on caps go down as far as the profile holds"},
    {reason::panel_too_fast, decision_kind::measuring, "panel_too_fast",
     "measuring again: the mean interval, {mean_ms:%.2f} ms, is shorter than the fastest of the "
     "profile ({shortest_ms:%.2f} ms): the panel runs within about 20 us of 60 frames per second, "
     "once rounded, or faster, and caps stay released",
     CAPS_RELEASED},
    {reason::scene_faster, decision_kind::measuring, "scene_faster",
     "measuring again: the mean interval, {mean_ms:%.2f} ms, is shorter than the profile has them "
     "({shortest_ms:%.2f} to {longest_ms:%.2f} ms): another scene",
     CAPS_RELEASED},
    {reason::scene_slower, decision_kind::measuring, "scene_slower",
     "measuring again: the mean interval, {mean_ms:%.2f} ms, is longer than the profile has them "
     "({shortest_ms:%.2f} to {longest_ms:%.2f} ms): another scene",
     CAPS_RELEASED},
    {reason::scene_uneven, decision_kind::measuring, "scene_uneven",
     "measuring again: intervals vary more than the profile has them (variance {variance}, "
     "{allowed} is allowed): another scene",
     CAPS_RELEASED},
    {reason::scene_changed, decision_kind::measuring, "scene_changed",
     "measuring again: the scene has changed", CAPS_RELEASED},
    {reason::poor_in_a_row, decision_kind::measuring, "poor_in_a_row",
     "measuring again: the third report in a row with too few intervals in the profile"
     "[ ({share} %)]",
     CAPS_RELEASED},
    {reason::poor_since_good, decision_kind::measuring, "poor_since_good",
     "measuring again: the third poor report since the last good one[ ({share} %)]", CAPS_RELEASED},
    {reason::suspended, decision_kind::analyser, "suspended",
     "suspended: {locks}|suspended: why is not known", CAPS_RELEASED "|caps were released already"},
    {reason::resumed, decision_kind::analyser, "resumed",
     "measuring begins: nothing suspends the analysis any more",
     "\"{activity}\" is known, with {scenes:scene}|\"{activity}\" is new to the analyser"},

    {reason::rate_asked, decision_kind::rate, "rate_asked",
     "{fps} frames per second asked: {winner} wants {fps}",
     "who counts has changed with the policy state \"{policy}\"|{cause}"},
    {reason::rate_lifted, decision_kind::rate, "rate_lifted",
     "{fps} frames per second asked: the game tuner wants {wanted}, but {lift}"
     "[ (until {until_s:+%.1f})]",
     "who counts has changed with the policy state \"{policy}\"|{cause}"},
    {reason::rate_free, decision_kind::rate, "rate_free",
     "{fps} frames per second asked: nobody who counts wants less",
     "who counts has changed with the policy state \"{policy}\"|{cause}"},
    {reason::rate_unknown, decision_kind::rate, "rate_unknown",
     "{fps} frames per second asked: by whom is not known",
     "who counts has changed with the policy state \"{policy}\"|{cause}"},

    {reason::app_mode, decision_kind::app, "app_mode", "app mode: {mode}",
     "{cause}[; policy state \"{policy}\"][; app \"{app}\"]"},
    {reason::image_mode, decision_kind::image, "image_mode", "image engine mode {mode}", "{cause}"},
    {reason::thermal_on, decision_kind::thermal, "thermal_on",
     "thermal configuration {configuration} on", "{cause}"},
    {reason::thermal_off, decision_kind::thermal, "thermal_off",
     "thermal configuration {configuration} off", "{cause}"},
    {reason::low_power_off, decision_kind::power, "low_power_off", "low power mode off", "{cause}"},
    {reason::low_power_on, decision_kind::power, "low_power_on",
     "low power mode on[, its frequencies from {from_s:+%.1f} on]", "{cause}"},
    {reason::low_power_extreme, decision_kind::power, "low_power_extreme",
     "extreme low power mode on[, its frequencies from {from_s:+%.1f} on]", "{cause}"},
    {reason::mitigation_on, decision_kind::power, "mitigation_on", "thermal mitigation requested",
     "{cause}"},
    {reason::mitigation_off, decision_kind::power, "mitigation_off", "thermal mitigation over",
     "{cause}"},
    {reason::automode_on, decision_kind::power, "automode_on", "automode on", "{cause}"},
    {reason::automode_off, decision_kind::power, "automode_off", "automode off", "{cause}"},
    {reason::logged, decision_kind::other, "logged", "", ""},
};

constexpr bool in_order() {
    for (size_t i = 0; i < std::size(rows); ++i)
        if (rows[i].why != static_cast<reason>(i))
            return false;
    return std::size(rows) == static_cast<size_t>(reason::logged) + 1;
}
static_assert(in_order(), "a reason is its own row");

}  // namespace

std::span<const reason_row> reason_rows() {
    return rows;
}

const reason_row &reason_row_of(reason why) {
    return rows[static_cast<size_t>(why)];
}

const char *decision_kind_word(decision_kind kind) {
    constexpr const char *words[] = {"caps",    "measuring", "analyser", "rate",    "image",
                                     "thermal", "app",       "power",    "failure", "other"};
    static_assert(std::size(words) == static_cast<size_t>(decision_kind::other) + 1);
    return words[static_cast<size_t>(kind)];
}
