#include "tools/explain/daemon_state.h"

#include <string.h>

#include <algorithm>
#include <iterator>

#include "core/events.h"
#include "core/timer.h"
#include "device/service_words.h"
#include "features/low_power_mode.h"
#include "fia/records.h"
#include "resource/fps_manager.h"
#include "resource/game_tuner.h"
#include "resource/requestor.h"
#include "tools/recording/cap_call.h"
#include "tools/recording/effects.h"

namespace {

constexpr int64_t ms_ns = 1000000;
constexpr int lock_max = 32;        // numbers of reasons to be suspended, bits of a mask
constexpr size_t thermal_max = 64;  // configurations at once; a device has a dozen

// ---- messages

void take_game(daemon_state *state, const int32_t *values) {
    const int32_t fps = values[2];
    const bool tuned = values[1] != 0 && state->tuner_policy &&
                       values[0] == game_tuner_mode_tuned && rate_is_asked(fps);
    state->tuner_target = tuned ? fps : 0;
}

void take_message(daemon_state *state, const dvx_message &message) {
    const std::string client(message.client, strnlen(message.client, sizeof(message.client)));
    const int32_t *values = message.payload.values;
    if (client == DVX_CLIENT_POWERHAL && message.code == DVX_CODE_GAME)
        take_game(state, values);
    else if (client == DVX_CLIENT_POWERHAL && message.code == DVX_CODE_GAME_OPTIMIZER)
        state->tuner_policy = values[0] != 0;
    else if (client == DVX_CLIENT_POWERHAL && message.code == DVX_CODE_WINDOW)
        state->window = message.payload.text;
    else if (client == DVX_CLIENT_POWERHAL &&
             (message.code == DVX_CODE_APP || message.code == DVX_CODE_ACTIVITY))
        state->app =
            std::string(message.payload.text).substr(0, strcspn(message.payload.text, "/"));
    else if (client == DVX_CLIENT_DGPC && message.code == DVX_CODE_FPS)
        state->requests[requestor_dgpc].value = values[0];
    if (client == DVX_CLIENT_LOWPOWERMODE) {
        state->low_power_on = values[0];
        state->low_power_level = values[1];
        const bool capped = values[0] != 0 && values[1] == lpm_level_extreme && values[2] != 0;
        state->requests[requestor_lpm].value = capped ? lpm_extreme_fps : lpm_no_cap;
    }
}

// ---- events

constexpr struct {
    std::optional<bool> daemon_state::*field;
    event_id event;
    bool value;
} switches[] = {
    {&daemon_state::panel_on, EV_SCREEN_ON, true},
    {&daemon_state::panel_on, EV_SCREEN_OFF, false},
    {&daemon_state::covered, EV_FLOATING_WINDOW_ON, true},
    {&daemon_state::covered, EV_FLOATING_WINDOW_OFF, false},
    {&daemon_state::vr, EV_VR_ON, true},
    {&daemon_state::vr, EV_VR_OFF, false},
};

void take_event(daemon_state *state, const record &came) {
    const char *mode = mode_entered(came);
    if (mode != nullptr)
        state->mode = mode;
    for (const auto &row : switches)
        if (row.event == came.event)
            state->*row.field = row.value;
}

// ---- calls

cap_state *find_cap(daemon_state *state, const std::string &name) {
    for (cap_state &cap : state->caps)
        if (name == "TMK_" + cap.name)
            return &cap;
    return nullptr;
}

void take_cap(daemon_state *state, const cap_call &call) {
    cap_state *cap = find_cap(state, call.name);
    if (cap == nullptr)
        return;
    const auto found = std::find(cap->hertz.begin(), cap->hertz.end(), call.hertz);
    if (found == cap->hertz.end())
        return;
    cap->level = static_cast<size_t>(found - cap->hertz.begin());
    cap->known = true;
}

void take_call(daemon_state *state, const record &call) {
    state->calls_seen = true;
    cap_call cap;
    if (cap_call_read(call, &cap))
        take_cap(state, cap);
    else if (call.values.empty())
        return;
    else if (call.name == "request_fps")
        state->rate = record_integer(call, 0);
    else if (call.name == "request_image_engine_mode")
        state->image_mode = record_integer(call, 0);
    else if (call.name == "set_automode_freq")
        state->automode = record_number(call, 0) != 0;
    else if (call.name.starts_with("request_tmr_"))
        state->mitigation = record_number(call, 0) != UINT32_MAX;
    else if (call.name == "enable_thermal_config" && call.values.size() > 1) {
        if (record_number(call, 1) == 0)
            state->thermal.erase(call.values[0]);
        else if (state->thermal.size() < thermal_max)
            state->thermal.insert(call.values[0]);
    }
}

void take_service(daemon_state *state, const std::string &name) {
    for (const device_service &service : device_services)
        if (name == service.name)
            state->services[name] = true;
}

// ---- lines of the log

bool is_requestor(int id) {
    return id >= requestor_dgpc && id <= requestor_lpm;
}

void restart_measurement(daemon_state *state) {
    state->analyser = analyser_mode::measuring;
    state->measured = 0;
    state->scene = 0;
}

void take_measuring_line(daemon_state *state, const record &line) {
    int &scenes = state->scenes[state->slot];
    switch (line.row->id) {
        case log_line::analyser_resumed:
        case log_line::active_scene_changed:
        case log_line::active_too_low:
        case log_line::active_too_often_low:
        case log_line::measure_again:
            restart_measurement(state);
            break;
        case log_line::measure_share:
            state->profile_share = record_integer(line, 0);
            state->profile_bucket = std::min(
                static_cast<uint32_t>(std::max(record_integer(line, 1), 0)), fia_bucket_count - 1);
            break;
        case log_line::measure_complete:
            state->analyser = analyser_mode::active;
            scenes = std::min(scenes + 1, fia_scene_limit);
            state->scene = scenes;
            break;
        case log_line::measure_over:
            state->analyser = analyser_mode::active;
            state->scene = 0;
            break;
        case log_line::scene_matched:
            state->analyser = analyser_mode::active;
            state->scene = record_integer(line, 0);
            break;
        default:
            break;
    }
}

void take_timer_line(daemon_state *state, const record &line) {
    const int slot = record_integer(line, 0);
    if (line.row->id == log_line::timer_expired) {
        state->timers.erase(slot);
    } else if (line.row->id == log_line::timer_requested && slot >= 0 &&
               slot < static_cast<int>(timer_slot_count)) {
        const int64_t length_ms = record_integer(line, 1);
        const int64_t end_ns = state->now_ns + std::max<int64_t>(length_ms, 0) * ms_ns;
        state->timers[slot] = std::max(state->timers[slot], end_ns);
    }
}

void take_rate_line(daemon_state *state, const record &line) {
    switch (line.row->id) {
        case log_line::requestor_listed:
            if (is_requestor(record_integer(line, 1)) &&
                record_integer(line, 1) != requestor_image_enhance)
                state->requests[record_integer(line, 1)] = {record_integer(line, 2),
                                                            record_integer(line, 3) != 0};
            break;
        case log_line::rate_grant:
            if (is_requestor(record_integer(line, 0)))
                state->requests[record_integer(line, 0)].granted = record_integer(line, 1) != 0;
            break;
        case log_line::rate_applied:
            state->rate = record_integer(line, 0);
            state->rate_winner = record_integer(line, 1);
            if (is_requestor(record_integer(line, 1)))
                state->requests[record_integer(line, 1)] = {record_integer(line, 0), true};
            break;
        default:
            break;
    }
}

void take_line(daemon_state *state, const record &line) {
    switch (line.row->id) {
        case log_line::started:
            state->served_ns = state->now_ns;
            break;
        case log_line::window_in_front:
            state->window = line.values[0];
            break;
        case log_line::app_in_front:
            state->app = line.values[0];
            break;
        case log_line::policy_state:
            state->policy = line.values[0];
            break;
        case log_line::automode_command:
            if (record_integer(line, 0) == 0 || record_integer(line, 0) == 1)
                state->automode = record_integer(line, 0) == 1;
            break;
        case log_line::game_optimizer:
            state->tuner_policy = record_integer(line, 0) != 0;
            break;
        case log_line::analyser_locked:
            if (record_integer(line, 0) >= 0 && record_integer(line, 0) < lock_max)
                state->locks.insert(record_integer(line, 0));
            break;
        case log_line::analyser_unlocked:
            state->locks.erase(record_integer(line, 0));
            break;
        case log_line::analyser_started:
        case log_line::analyser_suspended:
            state->analyser = analyser_mode::suspended;
            break;
        case log_line::activity_known:
        case log_line::activity_new:
            state->activity = line.values[0];
            state->slot = record_integer(line, 1);
            if (state->slot < 0 || state->slot >= fia_activity_count)
                state->slot = -1;
            if (line.row->id == log_line::activity_new)
                state->scenes[state->slot] = 0;
            break;
        case log_line::rate_service_down:
            state->services["gbm-client"] = false;
            break;
        default:
            take_rate_line(state, line);
            take_timer_line(state, line);
            take_measuring_line(state, line);
            break;
    }
}

}  // namespace

daemon_state daemon_state_make(const simulated_figures &figures) {
    daemon_state state;
    state.tunables = figures.tunables;
    for (const tmk_freq_row &row : figures.rows) {
        cap_state cap;
        cap.name = row.name;
        for (uint32_t level = 0; level < freq_level_slots && row.freqs[level] != 0; ++level)
            cap.hertz.push_back(row.freqs[level] * (row.type == freq_type_gpu ? 1.0 : 1000.0));
        state.caps.push_back(cap);
    }
    return state;
}

void daemon_state_take(daemon_state *state, const step &taken, bool as_asked) {
    state->now_ns = taken.time_ns;
    if (taken.taken.kind == happening_kind::message)
        take_message(state, *taken.taken.message);
    if (taken.taken.kind == happening_kind::interval && state->analyser == analyser_mode::measuring)
        ++state->measured;
    for (const record &came : taken.records) {
        if (came.kind == record_kind::event)
            take_event(state, came);
        else if (came.kind == record_kind::call && (as_asked || !record_is_refused(came)))
            take_call(state, came);
        else if (came.kind == record_kind::service)
            take_service(state, came.name);
        else if (came.row != nullptr)
            take_line(state, came);
    }
    // A timer of which nothing is heard once it is over has run.
    std::erase_if(state->timers, [&](const auto &timer) { return timer.second < state->now_ns; });
}

bool rate_is_asked(int32_t fps) {
    return fps >= fps_min && fps <= fps_max;
}

bool daemon_state_knows(const daemon_state &state, const cap_state &cap) {
    return cap.known || state.calls_seen;
}

int daemon_state_scenes(const daemon_state &state) {
    const auto scenes = state.scenes.find(state.slot);
    return scenes != state.scenes.end() ? scenes->second : 0;
}

const char *analyser_mode_word(analyser_mode mode) {
    constexpr const char *words[] = {"not known", "suspended", "measuring", "active"};
    return words[static_cast<size_t>(mode)];
}

const char *requestor_word(int32_t id) {
    switch (id) {
        case requestor_dgpc:
            return "the dgpc client";
        case requestor_game_tuner:
            return "the game tuner";
        case requestor_automode:
            return "automode";
        case requestor_lpm:
            return "low power mode";
        default:
            return "a reserved requestor";
    }
}

const char *lock_word(int lock) {
    constexpr const char *words[] = {"the screen is off", "something covers the app",
                                     "no game is in front", "VR mode is on"};
    return lock >= 0 && lock < static_cast<int>(std::size(words)) ? words[lock]
                                                                  : "an unknown reason";
}

const char *timer_word(int slot) {
    constexpr const char *words[timer_slot_count] = {"the game tuner's rate comes back",
                                                     "thermal mitigation ends",
                                                     "automode resumes",
                                                     "low power's frequencies",
                                                     "extreme low power's frequencies",
                                                     "the floating window counts as closed",
                                                     "no purpose"};
    return slot >= 0 && slot < static_cast<int>(timer_slot_count) ? words[slot] : "no purpose";
}
