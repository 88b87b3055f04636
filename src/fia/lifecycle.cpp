#include "fia/lifecycle.h"

#include <errno.h>

#include "context/app_context.h"
#include "core/event_manager.h"
#include "core/log.h"
#include "fia/analyser_records.h"
#include "fia/clock_manager.h"
#include "fia/fbcn.h"
#include "fia/mode.h"
#include "fia/period.h"
#include "fia/pilot.h"
#include "fia/records.h"
#include "fia/scenes.h"
#include "platform/clock.h"
#include "platform/recording.h"
#include "platform/thread.h"
#include "resource/hw_library.h"

namespace {

constexpr int64_t idle_sleep_us = 500000;

// Reasons to be suspended, by the number of their lock bit.
enum fia_lock : int {
    lock_screen_off = 0,
    lock_floating_window = 1,
    lock_no_game = 2,
    lock_vr = 3,
};
constexpr int fia_lock_count = 4;

constinit struct {
    pthread_mutex_t fia_lock_mutex;
    uint32_t set[fia_lock_count] = {};  // under fia_lock_mutex
} locks = {};

void set_lock(fia_lock lock) {
    if (locks.set[lock] == 1)
        return;
    locks.set[lock] = 1;
    log_info("FIA lock%d locked", lock);
    fia_suspend();
}

void clear_lock(fia_lock lock) {
    if (locks.set[lock] == 0)
        return;
    locks.set[lock] = 0;
    log_info("FIA lock%d unlocked", lock);
    fia_resume();
}

void change_lock(void (*change)(fia_lock), fia_lock lock) {
    pthread_mutex_lock(&locks.fia_lock_mutex);
    change(lock);
    pthread_mutex_unlock(&locks.fia_lock_mutex);
}

void cb_fia_app_game() {
    change_lock(clear_lock, lock_no_game);
}

void cb_fia_app_none() {
    change_lock(set_lock, lock_no_game);
}

void cb_fia_float_window_on() {
    change_lock(set_lock, lock_floating_window);
}

void cb_fia_float_window_off() {
    change_lock(clear_lock, lock_floating_window);
}

void cb_fia_screen_on() {
    request_fbcn_en(1);
    change_lock(clear_lock, lock_screen_off);
}

void cb_fia_screen_off() {
    change_lock(set_lock, lock_screen_off);
    request_fbcn_en(0);
}

void cb_fia_vr_on() {
    change_lock(set_lock, lock_vr);
}

void cb_fia_vr_off() {
    change_lock(clear_lock, lock_vr);
}

constexpr event_registration registrations[] = {
    {EV_MODE_GAME_DEFAULT, cb_fia_app_game},
    {EV_MODE_GAME_TUNER, cb_fia_app_game},
    {EV_MODE_GAME_DEFAULT_EXIT, cb_fia_app_none},
    {EV_MODE_GAME_TUNER_EXIT, cb_fia_app_none},
    {EV_FLOATING_WINDOW_ON, cb_fia_float_window_on},
    {EV_FLOATING_WINDOW_OFF, cb_fia_float_window_off},
    {EV_SCREEN_ON, cb_fia_screen_on},
    {EV_SCREEN_OFF, cb_fia_screen_off},
    {EV_VR_ON, cb_fia_vr_on},
    {EV_VR_OFF, cb_fia_vr_off},
};

bool is_locked() {
    for (const uint32_t set : locks.set)
        if (set == 1)
            return true;
    return false;
}

void enter_foreground_activity() {
    char name[sizeof(fia_activity::name)];
    copy_current_window_name(name, sizeof(name));
    log_info("Escaping Suspend mode...");
    const int32_t hash = fia_name_hash(name);
    const int32_t index = fia_is_activity_in_list(hash, name);
    if (index >= 0) {
        fia_use_activity(index);
        log_info("%s DETECT at %d", name, index);
    } else {
        log_info("%s NEW at %d", name, fia_save_activity(hash, name));
    }
    fia_allow_retries();
    fia_pilot_start();
}

// Saves where the activity stood, one step up, for the time when it comes back.
void save_levels(fia_activity *cur) {
    const uint32_t target_fps = static_cast<uint32_t>(cur->target_fps);
    fia_clock_scale_freq(get_freq_upstep(cur->target_fps, target_fps));
    fia_restart_rate(cur->target_fps);
    fia_clock_get_freq(cur->rsc_max, cur->rsc_idx);
}

void suspend_running() {
    const fia_data *data = fia.data;
    fbcn_change_thresholds(all_ones, 0);
    if (data->cur == nullptr) {
        log_info("%s: No current activity data", "fia_suspend");
        return;
    }
    if (data->cur->rsc_idx != nullptr)
        save_levels(data->cur);
    fia_clock_clear_freq();
    set_target(0);
    fia_enter_suspended();
    log_info("FIA Suspended!");
}

int build_analyser() {
    int result = fia_create_records();
    if (result == 0) {
        register_callbacks("fia", registrations);
        result = fbcn_change_thresholds(0, 0);
        result |= request_fbcn_en(1);
    }
    if (result != 0)
        log_error("Failed to Initialize FIA data: %d\n", result);
    return result;
}

}  // namespace

void fia_suspend(void) {
    if (!fia_is_enabled())
        return;
    pthread_mutex_lock(&fia.fia_mutex);
    if (fia.data->mode != fia_mode_suspended)
        suspend_running();
    pthread_mutex_unlock(&fia.fia_mutex);
}

void fia_resume(void) {
    if (!fia_is_enabled() || is_locked())
        return;
    pthread_mutex_lock(&fia.fia_mutex);
    if (fia.data->mode == fia_mode_suspended)
        enter_foreground_activity();
    pthread_mutex_unlock(&fia.fia_mutex);
}

int fia_start_analyser(void) {
    const int result = build_analyser();
    if (result != 0)
        return result;
    // Published under the lock, so that no event resumes before the wait for a game is set.
    pthread_mutex_lock(&locks.fia_lock_mutex);
    fia_publish();
    set_lock(lock_no_game);
    pthread_mutex_unlock(&locks.fia_lock_mutex);
    log_info("FIA Thread Started.\n");
    return 0;
}

void fia_stop_analyser(void) {
    fia_free_activities();
    request_fbcn_en(0);
    fia_free_records();
    log_info("FIA Thread Exited.\n");
}

void *frame_interval_analyzer(void *) {
    recording_begin(recorded_analyser);
    const int result = fia_start_analyser();
    recording_end();
    if (result == 0)
        while (fia.data->running != 0)
            clock_sleep_us(idle_sleep_us);
    fia_stop_analyser();
    return nullptr;
}

int init_fia(void) {
    if (get_handle() != 0) {
        log_error("Failed to get handle for fia");
        return -EINVAL;
    }
    if (fbcn_bind() != 0)
        return -EINVAL;
    pthread_mutex_init(&fia.fia_mutex, nullptr);
    pthread_mutex_init(&locks.fia_lock_mutex, nullptr);
    if (thread_start("fia", frame_interval_analyzer) != 0) {
        log_error("Error initializing FIA thread\n");
        return -EINVAL;
    }
    return 0;
}
