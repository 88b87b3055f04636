#include "resource/game_tuner.h"

#include <atomic>

#include "core/event_manager.h"
#include "core/log.h"
#include "core/timer.h"
#include "resource/fps_manager.h"
#include "resource/requestor.h"

namespace {

constexpr int32_t no_target = 0;
constexpr int64_t boost_ms = 1000;
constexpr int64_t rotation_boost_ms = 2000;

void cb_gt_rotation();
void cb_gt_activity_change();
void cb_gt_window_change();

constexpr event_registration boosts[] = {
    {EV_ROTATION, cb_gt_rotation},
    {EV_APP_CHANGE, cb_gt_activity_change},
    {EV_WINDOW_CHANGED, cb_gt_window_change},
};
constexpr int boost_count = sizeof(boosts) / sizeof(boosts[0]);

// Used by the client listener; the timer thread reads the target.
constinit struct {
    int32_t mode = 0;
    int32_t policy = 0;
    std::atomic<int32_t> target_fps = no_target;
    bool registered[boost_count] = {};
} tuner;

int boost(int64_t duration_ms) {
    add_timer_event(timer_game_tuner, duration_ms, cb_set_requested_fps);
    return requestor_request_fps(requestor_game_tuner, no_target);
}

void cb_gt_rotation() {
    boost(rotation_boost_ms);
}

void cb_gt_activity_change() {
    boost(boost_ms);
}

void cb_gt_window_change() {
    boost(boost_ms);
}

void announce_game_optimizer() {
    notify_event(tuner.policy != 0 && tuner.mode == 0 ? EV_GAME_OPTIMIZER_ENABLE
                                                      : EV_GAME_OPTIMIZER_DISABLE);
}

// A registration that fails is tried again with the next tuned game.
void register_boosts_once() {
    for (int i = 0; i < boost_count; ++i)
        if (!tuner.registered[i])
            tuner.registered[i] = register_callback_for_event(boosts[i].id, "game_tuner_boost",
                                                              boosts[i].callback) == 0;
}

void start_tuned_game(int32_t fps) {
    register_boosts_once();
    notify_event(EV_GAME_TUNER_MODE_ON);
    add_timer_event(timer_game_tuner, boost_ms, cb_set_requested_fps);
    tuner.target_fps.store(fps, std::memory_order_relaxed);
}

}  // namespace

void set_game_tuner_mode(int32_t mode) {
    tuner.mode = mode;
    announce_game_optimizer();
}

void set_game_tuner_policy(int32_t policy) {
    tuner.policy = policy;
    announce_game_optimizer();
}

void set_ofmode_control(int32_t game_on, int32_t ofvalue) {
    notify_event(game_on != 0 && ofvalue >= 1 ? EV_OFMODE_SET : EV_OFMODE_RELEASE);
}

int set_game_mode(int32_t game_on, int32_t fps) {
    const bool tuned = game_on != 0 && tuner.policy != 0 && tuner.mode == game_tuner_mode_tuned;
    if (tuned)
        log_error("Game tuner mode");
    if (tuned && fps >= fps_min && fps <= fps_max) {
        start_tuned_game(fps);
    } else {
        if (game_on != 0)
            notify_event(EV_GAME_TUNER_MODE_OFF);
        tuner.target_fps.store(no_target, std::memory_order_relaxed);
    }
    return requestor_request_fps(requestor_game_tuner, no_target);
}

void cb_set_requested_fps(void) {
    requestor_request_fps(requestor_game_tuner, tuner.target_fps.load(std::memory_order_relaxed));
}
