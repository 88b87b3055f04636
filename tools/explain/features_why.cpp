// Why the display's rate, the image engine and the other features change.
#include <stdio.h>

#include <algorithm>
#include <set>
#include <string_view>

#include "core/events.h"
#include "core/timer.h"
#include "tools/explain/sentences.h"
#include "tools/recording/messages.h"

namespace {

std::string seconds(int64_t time_ns) {
    char text[32];
    snprintf(text, sizeof(text), "+%.1f", static_cast<double>(time_ns) / 1e9);
    return text;
}

struct event_words {
    event_id event;
    const char *words;
};

// What events tell of their cause where nothing else does.
constexpr event_words causes[] = {
    {EV_ROTATION, "the screen turned"},
    {EV_SCREEN_OFF, "the panel went off"},
    {EV_SCREEN_ON, "the panel went on"},
    {EV_APP_CHANGE, "the app in front changed"},
    {EV_WINDOW_CHANGED, "the window in front changed"},
    {EV_INTERACTION, "the screen was touched"},
    {EV_SOFT_KEY, "a soft key was pressed"},
    {EV_GAME_APP_RESUMED, "a game came to the front"},
    {EV_GAME_APP_PAUSED, "the game left the front"},
    {EV_ENCODE_START, "a camera records"},
    {EV_ENCODE_END, "the camera's recording ended"},
    {EV_3RD_ENCODE_START, "another app's camera records"},
    {EV_3RD_ENCODE_END, "another app's recording ended"},
    {EV_INCOMING_CALL_ON, "a call comes in"},
    {EV_INCOMING_CALL_OFF, "the call ended"},
    {EV_THERMAL_ENGINE_ACTIVATED, "the thermal engine is ready"},
    {EV_MODE_GAME_DEFAULT, "a game is in front"},
    {EV_MODE_GAME_TUNER, "a tuned game is in front"},
    {EV_MODE_GALLERY, "the gallery is in front"},
    {EV_MODE_GEO, "navigation is in front"},
    {EV_MODE_NONE, "no specific app is in front"},
};

std::string describe_timers(const daemon_state &before, const daemon_state &after) {
    std::string text;
    for (const auto &[slot, end_ns] : before.timers)
        if (!after.timers.contains(slot))
            text.append(text.empty() ? "time: " : ", ").append(timer_word(slot));
    return text.empty() ? "a timer ran out" : text;
}

std::string describe_cause(const daemon_state &before, const daemon_state &after,
                           const moment &now) {
    if (now.kind == moment_message) {
        const std::string words = describe_message(now.message, now.is_text);
        return "\"" + words.substr(0, words.find("  (")) + "\"";
    }
    if (now.kind == moment_start)
        return "the daemon starts";
    if (now.kind == moment_timers)
        return describe_timers(before, after);
    for (const event_words &row : causes)
        if (moment_has_event(now, row.event))
            return row.words;
    if (moment_line(now, line_timer_expired) != nullptr)
        return describe_timers(before, after);
    return "why is not known";
}

// The event that a message of the power HAL raises where debug lines do not show it.
constexpr struct {
    int32_t code;
    event_id event;
} lifting_messages[] = {
    {DVX_CODE_ROTATION, EV_ROTATION},     {DVX_CODE_APP, EV_APP_CHANGE},
    {DVX_CODE_ACTIVITY, EV_APP_CHANGE},   {DVX_CODE_WINDOW, EV_WINDOW_CHANGED},
    {DVX_CODE_GAME, EV_GAME_APP_RESUMED},
};

bool has_event(const moment &now, event_id event) {
    if (moment_has_event(now, event))
        return true;
    return now.kind == moment_message &&
           std::string_view(now.message.client) == DVX_CLIENT_POWERHAL &&
           std::any_of(
               std::begin(lifting_messages), std::end(lifting_messages),
               [&](const auto &row) { return row.code == now.message.code && row.event == event; });
}

// What lifts a tuned game's rate for a while.
const char *lift_words(const moment &now) {
    for (const event_id event :
         {EV_ROTATION, EV_APP_CHANGE, EV_WINDOW_CHANGED, EV_GAME_APP_RESUMED})
        if (has_event(now, event))
            return std::find_if(std::begin(causes), std::end(causes),
                                [&](const event_words &row) { return row.event == event; })
                ->words;
    return nullptr;
}

void explain_rate(const daemon_state &before, const daemon_state &after, const moment &now,
                  std::vector<decision> *made) {
    const bool asked = std::any_of(now.came.begin(), now.came.end(), [](const told_entry &told) {
        return told.entry.text.starts_with("request_fps ");
    });
    if (!after.rate || (!asked && moment_line(now, line_rate_applied) == nullptr))
        return;
    std::string text = std::to_string(*after.rate) + " frames per second asked: ";
    std::string detail;
    const int32_t winner = after.rate_winner.value_or(-1);
    const char *lift = lift_words(now);
    const bool tuned = after.tuner_target.value_or(0) > 0;
    if (!after.rate_winner)
        text += "by whom is not known";
    else if (winner >= 0)
        text += std::string(requestor_word(winner)) + " wants " + std::to_string(*after.rate);
    else if (tuned && lift != nullptr)
        text += "the game tuner wants " + std::to_string(*after.tuner_target) + ", but " + lift;
    else
        text += "nobody who counts wants less";
    const auto timer = after.timers.find(timer_game_tuner);
    if (tuned && lift != nullptr && winner < 0 && timer != after.timers.end())
        text += " (until " + seconds(timer->second) + ")";
    if (moment_line(now, line_rate_grant) != nullptr && after.policy)
        detail = "who counts has changed with the policy state \"" + *after.policy + "\"";
    else
        detail = describe_cause(before, after, now);
    add_decision(made, now, decision_rate, text, detail);
}

void explain_app(const daemon_state &before, const daemon_state &after, const moment &now,
                 std::vector<decision> *made) {
    if (!after.mode || before.mode == after.mode)
        return;
    std::string detail = describe_cause(before, after, now);
    if (after.policy)
        detail += "; policy state \"" + *after.policy + "\"";
    if (after.app)
        detail += "; app \"" + *after.app + "\"";
    add_decision(made, now, decision_app, "app mode: " + *after.mode, detail);
}

void explain_thermal(const daemon_state &before, const daemon_state &after, const moment &now,
                     std::vector<decision> *made) {
    const auto say = [&](const std::set<std::string> &these, const std::set<std::string> &those,
                         const char *on_or_off) {
        for (const std::string &name : these)
            if (!those.contains(name))
                add_decision(made, now, decision_thermal,
                             "thermal configuration " + name + on_or_off,
                             describe_cause(before, after, now));
    };
    say(after.thermal, before.thermal, " on");
    say(before.thermal, after.thermal, " off");
}

void explain_power(const daemon_state &before, const daemon_state &after, const moment &now,
                   std::vector<decision> *made) {
    const std::string cause = describe_cause(before, after, now);
    if (after.low_power_on && (before.low_power_on != after.low_power_on ||
                               before.low_power_level != after.low_power_level)) {
        const bool extreme = *after.low_power_level == 2;
        const auto timer = after.timers.find(extreme ? timer_elpm : timer_lpm);
        std::string text = *after.low_power_on == 0 ? "low power mode off"
                           : extreme                ? "extreme low power mode on"
                                                    : "low power mode on";
        if (*after.low_power_on != 0 && timer != after.timers.end())
            text += ", its frequencies from " + seconds(timer->second) + " on";
        add_decision(made, now, decision_power, text, cause);
    }
    if (after.mitigation && before.mitigation.value_or(false) != *after.mitigation)
        add_decision(made, now, decision_power,
                     *after.mitigation ? "thermal mitigation requested" : "thermal mitigation over",
                     cause);
    if (after.automode && before.automode != after.automode)
        add_decision(made, now, decision_power, *after.automode ? "automode on" : "automode off",
                     cause);
}

// Lines whose sentence is said here, and not from the table.
bool is_told_elsewhere(const log_row &row) {
    constexpr log_line said[] = {line_measure_too_slow, line_measure_too_few, line_measure_again,
                                 line_measure_over, line_caps_over_budget};
    if (row.failure || std::find(std::begin(said), std::end(said), row.id) != std::end(said))
        return false;
    switch (row.subject) {
        case subject_app:
        case subject_policy:
        case subject_rate:
        case subject_image:
        case subject_timer:
        case subject_event:
        case subject_library:
        case subject_analyser:
        case subject_measuring:
        case subject_scene:
        case subject_active:
        case subject_caps:
            return true;
        default:
            return false;
    }
}

void explain_lines(const daemon_state &, const daemon_state &, const moment &now,
                   std::vector<decision> *made) {
    for (const told_entry &told : now.came) {
        if (told.line.row == nullptr || is_told_elsewhere(*told.line.row))
            continue;
        const std::string sentence = log_line_sentence(told.line);
        if (!sentence.empty())
            add_decision(made, now, told.line.row->failure ? decision_failure : decision_other,
                         sentence);
    }
}

void explain_image(const daemon_state &before, const daemon_state &after, const moment &now,
                   std::vector<decision> *made) {
    if (after.image_mode && before.image_mode.value_or(0) != *after.image_mode)
        add_decision(made, now, decision_image,
                     "image engine mode " + std::to_string(*after.image_mode),
                     describe_cause(before, after, now));
}

}  // namespace

void explain_features(const daemon_state &before, const daemon_state &after, const moment &now,
                      std::vector<decision> *made) {
    for (const auto explain :
         {explain_app, explain_rate, explain_image, explain_thermal, explain_power, explain_lines})
        explain(before, after, now, made);
}
