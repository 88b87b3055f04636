#include "features/dfrc_if.h"

#include <pthread.h>

#include <cstdint>

#include "context/app_context.h"
#include "core/event_manager.h"
#include "core/timer.h"
#include "ipc/outbound/gbm_client.h"

namespace {

constexpr int64_t close_delay_ms = 1000;

constinit struct {
    pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
    bool floating_window_on = false;  // under `lock`
} bridge;

void cb_dfrc_interaction() {
    request_gbm_restoration(restoration_touch);
}

void cb_dfrc_rotation() {
    request_gbm_restoration(restoration_rotation);
}

void cb_dfrc_fps_lock() {
    request_gbm_restoration(restoration_fps_lock);
}

void cb_dfrc_fps_unlock() {
    request_gbm_restoration(restoration_fps_unlock);
}

void cb_dfrc_activity_change() {
    send_pkg_status(0);
}

void cb_dfrc_window_change() {
    notify_package_name_to_gbm(get_current_window_name());
}

void cb_dfrc_app_none() {
    gbm_category_set(category_code_none);
}

void cb_dfrc_app_game() {
    gbm_category_set(category_code_game);
}

void cb_dfrc_app_browser() {
    gbm_category_set(category_code_browser);
}

void cb_dfrc_app_sns() {
    gbm_category_set(category_code_sns);
}

void cb_dfrc_app_geo() {
    gbm_category_set(category_code_geo);
}

void cb_dfrc_game_optimizer_enable() {
    notify_game_optimizer_en(1);
}

void cb_dfrc_game_optimizer_disable() {
    notify_game_optimizer_en(0);
}

void cb_dfrc_ofmode_set() {
    notify_set_ofmode(1);
}

void cb_dfrc_ofmode_release() {
    notify_set_ofmode(0);
}

void cb_dfrc_floating_window_on() {
    pthread_mutex_lock(&bridge.lock);
    bridge.floating_window_on = true;
    notify_floating_window_info(1);
    pthread_mutex_unlock(&bridge.lock);
}

void cb_dfrc_floating_window_off() {
    pthread_mutex_lock(&bridge.lock);
    bridge.floating_window_on = false;
    pthread_mutex_unlock(&bridge.lock);
    add_timer_event(timer_floating_window, close_delay_ms, cb_dfrc_floating_window_delayed_off);
}

constexpr event_registration registrations[] = {
    {EV_INTERACTION, cb_dfrc_interaction},
    {EV_ROTATION, cb_dfrc_rotation},
    {EV_FPS_LOCK, cb_dfrc_fps_lock},
    {EV_FPS_UNLOCK, cb_dfrc_fps_unlock},
    {EV_APP_CHANGE, cb_dfrc_activity_change},
    {EV_WINDOW_CHANGED, cb_dfrc_window_change},
    {EV_MODE_NONE, cb_dfrc_app_none},
    {EV_MODE_GAME_DEFAULT, cb_dfrc_app_game},
    {EV_MODE_BROWSER, cb_dfrc_app_browser},
    {EV_MODE_SNS, cb_dfrc_app_sns},
    {EV_MODE_GEO, cb_dfrc_app_geo},
    {EV_GAME_OPTIMIZER_ENABLE, cb_dfrc_game_optimizer_enable},
    {EV_GAME_OPTIMIZER_DISABLE, cb_dfrc_game_optimizer_disable},
    {EV_OFMODE_SET, cb_dfrc_ofmode_set},
    {EV_OFMODE_RELEASE, cb_dfrc_ofmode_release},
    {EV_FLOATING_WINDOW_ON, cb_dfrc_floating_window_on},
    {EV_FLOATING_WINDOW_OFF, cb_dfrc_floating_window_off},
};

}  // namespace

void cb_dfrc_floating_window_delayed_off(void) {
    pthread_mutex_lock(&bridge.lock);
    if (!bridge.floating_window_on)
        notify_floating_window_info(0);
    pthread_mutex_unlock(&bridge.lock);
}

int init_dfrc_if(void) {
    register_callbacks("dfrc_if", registrations);
    return 0;
}
