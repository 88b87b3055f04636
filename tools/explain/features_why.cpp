#include "tools/explain/features_why.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string_view>

#include "core/events.h"
#include "core/timer.h"
#include "features/low_power_mode.h"
#include "tools/recording/messages.h"

namespace {

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
                           const step &taken) {
    if (taken.taken.kind == happening_kind::message) {
        const std::string words = describe_message(*taken.taken.message);
        return "\"" + words.substr(0, words.find("  (")) + "\"";
    }
    if (step_is_start(taken))
        return "the daemon starts";
    if (taken.taken.kind == happening_kind::timers)
        return describe_timers(before, after);
    for (const event_words &row : causes)
        if (step_has_event(taken, row.event))
            return row.words;
    if (step_line(taken, log_line::timer_expired) != nullptr)
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

bool has_event(const step &taken, event_id event) {
    if (step_has_event(taken, event))
        return true;
    const dvx_message *message = taken.taken.message.get();
    return message != nullptr && std::string_view(message->client) == DVX_CLIENT_POWERHAL &&
           std::any_of(
               std::begin(lifting_messages), std::end(lifting_messages),
               [&](const auto &row) { return row.code == message->code && row.event == event; });
}

// What lifts a tuned game's rate for a while.
const char *lift_words(const step &taken) {
    for (const event_id event :
         {EV_ROTATION, EV_APP_CHANGE, EV_WINDOW_CHANGED, EV_GAME_APP_RESUMED})
        if (has_event(taken, event))
            return std::find_if(std::begin(causes), std::end(causes),
                                [&](const event_words &row) { return row.event == event; })
                ->words;
    return nullptr;
}

moved_value switched(const std::string &what, bool on) {
    return {what, "", std::nullopt, std::nullopt, on ? "off" : "on", on ? "on" : "off"};
}

double seconds(int64_t time_ns) {
    return static_cast<double>(time_ns) / 1e9;
}

void add_cause(const daemon_state &before, const daemon_state &after, const step &taken,
               decision *made) {
    set_fact(made, "cause", describe_cause(before, after, taken));
}

std::optional<double> number_of(const std::optional<int32_t> &known) {
    return known ? std::optional<double>(*known) : std::nullopt;
}

reason reason_of_rate(const daemon_state &after, bool lifted) {
    if (!after.rate_winner)
        return reason::rate_unknown;
    if (*after.rate_winner >= 0)
        return reason::rate_asked;
    return lifted ? reason::rate_lifted : reason::rate_free;
}

void explain_rate(const daemon_state &before, const daemon_state &after, const step &taken,
                  std::vector<decision> *made) {
    if (!after.rate || (step_call(taken, "request_fps") == nullptr &&
                        step_line(taken, log_line::rate_applied) == nullptr))
        return;
    const char *lift = lift_words(taken);
    const bool lifted = after.tuner_target.value_or(0) > 0 && lift != nullptr;
    decision asked = make_decision(taken, reason_of_rate(after, lifted));
    asked.answer = step_answer(taken, "request_fps");
    if (before.rate != after.rate)
        asked.moved.push_back(
            {"display", "fps", number_of(before.rate), number_of(after.rate), "", ""});
    set_fact(&asked, "fps", *after.rate);
    if (asked.why == reason::rate_asked)
        set_fact(&asked, "winner", requestor_word(*after.rate_winner));
    const auto timer = after.timers.find(timer_game_tuner);
    if (asked.why == reason::rate_lifted) {
        set_fact(&asked, "wanted", *after.tuner_target);
        set_fact(&asked, "lift", lift);
        if (timer != after.timers.end())
            set_fact(&asked, "until_s", seconds(timer->second));
    }
    if (step_line(taken, log_line::rate_grant) != nullptr && after.policy)
        set_fact(&asked, "policy", *after.policy);
    else
        add_cause(before, after, taken, &asked);
    made->push_back(asked);
}

void explain_app(const daemon_state &before, const daemon_state &after, const step &taken,
                 std::vector<decision> *made) {
    if (!after.mode || before.mode == after.mode)
        return;
    decision entered = make_decision(taken, reason::app_mode);
    entered.moved.push_back(
        {"app mode", "", std::nullopt, std::nullopt, before.mode.value_or(""), *after.mode});
    set_fact(&entered, "mode", *after.mode);
    add_cause(before, after, taken, &entered);
    if (after.policy)
        set_fact(&entered, "policy", *after.policy);
    if (after.app)
        set_fact(&entered, "app", *after.app);
    made->push_back(entered);
}

void explain_image(const daemon_state &before, const daemon_state &after, const step &taken,
                   std::vector<decision> *made) {
    if (!after.image_mode || before.image_mode.value_or(0) == *after.image_mode)
        return;
    decision set = make_decision(taken, reason::image_mode);
    set.answer = step_answer(taken, "request_image_engine_mode");
    set.moved.push_back(
        {"image engine", "", before.image_mode.value_or(0), number_of(after.image_mode), "", ""});
    set_fact(&set, "mode", *after.image_mode);
    add_cause(before, after, taken, &set);
    made->push_back(set);
}

void explain_thermal(const daemon_state &before, const daemon_state &after, const step &taken,
                     std::vector<decision> *made) {
    const auto explain = [&](const std::set<std::string> &these, const std::set<std::string> &those,
                             reason why) {
        for (const std::string &name : these) {
            if (those.contains(name))
                continue;
            decision set = make_decision(taken, why);
            set.answer = step_answer(taken, "enable_thermal_config", name);
            set.moved.push_back(switched(name, why == reason::thermal_on));
            set_fact(&set, "configuration", name);
            add_cause(before, after, taken, &set);
            made->push_back(set);
        }
    };
    explain(after.thermal, before.thermal, reason::thermal_on);
    explain(before.thermal, after.thermal, reason::thermal_off);
}

void explain_low_power(const daemon_state &before, const daemon_state &after, const step &taken,
                       std::vector<decision> *made) {
    if (!after.low_power_on || (before.low_power_on == after.low_power_on &&
                                before.low_power_level == after.low_power_level))
        return;
    const bool extreme = *after.low_power_level == lpm_level_extreme;
    const auto timer = after.timers.find(extreme ? timer_elpm : timer_lpm);
    decision set = make_decision(taken, *after.low_power_on == 0 ? reason::low_power_off
                                        : extreme                ? reason::low_power_extreme
                                                                 : reason::low_power_on);
    set.moved.push_back({"low power mode", "", number_of(before.low_power_on),
                         number_of(after.low_power_on), "", ""});
    if (timer != after.timers.end())
        set_fact(&set, "from_s", seconds(timer->second));
    add_cause(before, after, taken, &set);
    made->push_back(set);
}

void explain_switches(const daemon_state &before, const daemon_state &after, const step &taken,
                      std::vector<decision> *made) {
    const auto explain = [&](const char *what, bool on, reason why, std::optional<int32_t> answer) {
        decision set = make_decision(taken, why);
        set.answer = answer;
        set.moved.push_back(switched(what, on));
        add_cause(before, after, taken, &set);
        made->push_back(set);
    };
    if (after.mitigation && before.mitigation.value_or(false) != *after.mitigation)
        explain("thermal mitigation", *after.mitigation,
                *after.mitigation ? reason::mitigation_on : reason::mitigation_off,
                step_answer(taken, "request_tmr_2cluster"));
    if (after.automode && before.automode != after.automode)
        explain("automode", *after.automode,
                *after.automode ? reason::automode_on : reason::automode_off,
                step_answer(taken, "set_automode_freq"));
}

// Lines whose sentence is said here, and not from the table.
bool is_told_elsewhere(const log_row &row) {
    constexpr log_line told[] = {log_line::measure_too_slow, log_line::measure_too_few,
                                 log_line::measure_again, log_line::measure_over,
                                 log_line::caps_over_budget};
    if (row.failure || std::find(std::begin(told), std::end(told), row.id) != std::end(told))
        return false;
    switch (row.subject) {
        case log_subject::app:
        case log_subject::policy:
        case log_subject::rate:
        case log_subject::image:
        case log_subject::timer:
        case log_subject::event:
        case log_subject::library:
        case log_subject::analyser:
        case log_subject::measuring:
        case log_subject::scene:
        case log_subject::active:
        case log_subject::caps:
            return true;
        default:
            return false;
    }
}

void explain_lines(const daemon_state &, const daemon_state &, const step &taken,
                   std::vector<decision> *made) {
    constexpr const char *places[] = {"1", "2", "3", "4", "5", "6", "7", "8", "9"};
    for (const record &line : taken.records) {
        if (line.row == nullptr || line.row->sentence == nullptr || is_told_elsewhere(*line.row))
            continue;
        decision told = make_decision(taken, reason::logged);
        told.row = line.row;
        for (size_t i = 0; i < line.values.size() && i < std::size(places); ++i)
            set_fact(&told, places[i], line.values[i]);
        made->push_back(told);
    }
}

}  // namespace

void explain_features(const daemon_state &before, const daemon_state &after, const step &taken,
                      std::vector<decision> *made) {
    for (const auto explain : {explain_app, explain_rate, explain_image, explain_thermal,
                               explain_low_power, explain_switches, explain_lines})
        explain(before, after, taken, made);
}
