#include "tools/explain/daemon_state.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <cmath>
#include <iterator>

#include "core/events.h"
#include "core/timer.h"
#include "device/service_words.h"
#include "fia/records.h"
#include "resource/fps_manager.h"
#include "resource/requestor.h"
#include "tools/recording/cap_call.h"
#include "tools/recording/effects.h"

namespace {

constexpr int64_t ms_ns = 1000000;
constexpr int scenes_max = 5;  // that the analyser remembers of an activity
constexpr int tuned_mode = 1;
constexpr int lock_max = 32;        // numbers of reasons to be suspended, bits of a mask
constexpr size_t thermal_max = 64;  // configurations at once; a device has a dozen

int number(const std::vector<std::string> &values, size_t index) {
    return index < values.size() ? atoi(values[index].c_str()) : 0;
}

// A number as the calls have it, whatever a file says of them.
int32_t whole(double value) {
    return static_cast<int32_t>(
        std::clamp(std::isnan(value) ? 0 : value, double{INT32_MIN}, double{INT32_MAX}));
}

// ---- messages

void take_game(daemon_state *state, const int32_t *values) {
    const int32_t fps = values[2];
    const bool tuned = values[1] != 0 && state->tuner_policy && values[0] == tuned_mode &&
                       fps >= fps_min && fps <= fps_max;
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
        constexpr int extreme = 2;
        constexpr int extreme_fps = 30;
        const bool capped = values[0] != 0 && values[1] == extreme && values[2] != 0;
        state->requests[requestor_lpm].value = capped ? extreme_fps : -1;
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

void take_event(daemon_state *state, const timeline_entry &entry) {
    const char *mode = mode_entered(entry);
    if (mode != nullptr)
        state->mode = mode;
    for (const auto &row : switches)
        if (row.event == event_number(entry))
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

void take_call(daemon_state *state, const std::string &call) {
    state->calls_seen = true;
    char name[128] = "";
    double value = 0;
    cap_call cap;
    if (cap_call_read(call, &cap))
        take_cap(state, cap);
    else if (sscanf(call.c_str(), "request_fps %lf", &value) == 1)
        state->rate = whole(value);
    else if (sscanf(call.c_str(), "request_image_engine_mode %lf", &value) == 1)
        state->image_mode = whole(value);
    else if (sscanf(call.c_str(), "set_automode_freq %lf", &value) == 1)
        state->automode = value != 0;
    else if (call.starts_with("request_tmr_"))
        state->mitigation = call.find("4294967295") == std::string::npos;
    else if (sscanf(call.c_str(), "enable_thermal_config %127s %lf", name, &value) == 2) {
        if (value != 0 && state->thermal.size() < thermal_max)
            state->thermal.insert(name);
        else if (value == 0)
            state->thermal.erase(name);
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
    state->analyser = analyser_measuring;
    state->measured = 0;
    state->scene = 0;
}

void take_measuring_line(daemon_state *state, log_line id, const std::vector<std::string> &values) {
    int &scenes = state->scenes[state->slot];
    switch (id) {
        case line_analyser_resumed:
        case line_active_scene_changed:
        case line_active_too_low:
        case line_active_too_often_low:
        case line_measure_again:
            restart_measurement(state);
            break;
        case line_measure_share:
            state->profile_share = number(values, 0);
            state->profile_bucket = number(values, 1);
            break;
        case line_measure_complete:
            state->analyser = analyser_active;
            scenes = std::min(scenes + 1, scenes_max);
            state->scene = scenes;
            break;
        case line_measure_over:
            state->analyser = analyser_active;
            state->scene = 0;
            break;
        case line_scene_matched:
            state->analyser = analyser_active;
            state->scene = number(values, 0);
            break;
        default:
            break;
    }
}

void take_timer_line(daemon_state *state, log_line id, const std::vector<std::string> &values) {
    const int slot = number(values, 0);
    if (id == line_timer_expired) {
        state->timers.erase(slot);
    } else if (id == line_timer_requested && slot >= 0 &&
               slot < static_cast<int>(timer_slot_count)) {
        const int64_t length_ms = std::min<int64_t>(atol(values.at(1).c_str()), INT32_MAX);
        const int64_t end_ns = state->now_ns + std::max<int64_t>(length_ms, 0) * ms_ns;
        state->timers[slot] = std::max(state->timers[slot], end_ns);
    }
}

void take_rate_line(daemon_state *state, log_line id, const std::vector<std::string> &values) {
    switch (id) {
        case line_requestor_listed:
            if (is_requestor(number(values, 1)) && number(values, 1) != requestor_image_enhance)
                state->requests[number(values, 1)] = {number(values, 2), number(values, 3) != 0};
            break;
        case line_rate_grant:
            if (is_requestor(number(values, 0)))
                state->requests[number(values, 0)].granted = number(values, 1) != 0;
            break;
        case line_rate_applied:
            state->rate = number(values, 0);
            state->rate_winner = number(values, 1);
            if (is_requestor(number(values, 1)))
                state->requests[number(values, 1)] = {number(values, 0), true};
            break;
        default:
            break;
    }
}

void take_line(daemon_state *state, log_line id, const std::vector<std::string> &values) {
    switch (id) {
        case line_started:
            state->served_ns = state->now_ns;
            break;
        case line_window_in_front:
            state->window = values.at(0);
            break;
        case line_app_in_front:
            state->app = values.at(0);
            break;
        case line_policy_state:
            state->policy = values.at(0);
            break;
        case line_automode_command:
            if (number(values, 0) == 0 || number(values, 0) == 1)
                state->automode = number(values, 0) == 1;
            break;
        case line_game_optimizer:
            state->tuner_policy = number(values, 0) != 0;
            break;
        case line_analyser_locked:
            if (number(values, 0) >= 0 && number(values, 0) < lock_max)
                state->locks.insert(number(values, 0));
            break;
        case line_analyser_unlocked:
            state->locks.erase(number(values, 0));
            break;
        case line_analyser_started:
        case line_analyser_suspended:
            state->analyser = analyser_suspended;
            break;
        case line_activity_known:
        case line_activity_new:
            state->activity = values.at(0);
            state->slot = number(values, 1);
            if (state->slot < 0 || state->slot >= fia_activity_count)
                state->slot = -1;
            if (id == line_activity_new)
                state->scenes[state->slot] = 0;
            break;
        case line_rate_service_down:
            state->services["gbm-client"] = false;
            break;
        default:
            take_rate_line(state, id, values);
            take_timer_line(state, id, values);
            take_measuring_line(state, id, values);
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

void daemon_state_take(daemon_state *state, const moment &now) {
    state->now_ns = now.time_ns;
    if (now.kind == moment_message)
        take_message(state, now.message);
    if (now.kind == moment_interval && state->analyser == analyser_measuring)
        ++state->measured;
    for (const told_entry &told : now.came) {
        if (told.entry.kind == timeline_event)
            take_event(state, told.entry);
        else if (told.entry.kind == timeline_hardware)
            take_call(state, told.entry.text);
        else if (told.entry.kind == timeline_service)
            take_service(state, told.entry.text.substr(0, told.entry.text.find("  ")));
        else if (told.line.row != nullptr)
            take_line(state, told.line.row->id, told.line.values);
    }
    // A timer of which nothing is heard once it is over has run.
    std::erase_if(state->timers, [&](const auto &timer) { return timer.second < state->now_ns; });
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
