#include "features/low_power_mode.h"

#include <pthread.h>

#include "core/log.h"
#include "core/timer.h"
#include "resource/fps_manager.h"
#include "resource/requestor.h"
#include "resource/thermal_engine.h"

namespace {

constexpr int32_t level_low = 1;
constexpr int64_t low_delay_ms = 10000;
constexpr int64_t extreme_delay_ms = 30000;

constinit struct {
    bool lpm_supported = false;  // set at load time; the thermal check alone runs beside
    pthread_mutex_t lpm_lock = PTHREAD_MUTEX_INITIALIZER;
    int32_t lpm_on = 0;    // under lpm_lock
    int32_t lpm_mode = 0;  // under lpm_lock
} lpm;

// With lpm_lock held, as the switches that follow.
bool is_level_on(int32_t level) {
    return lpm.lpm_on != 0 && lpm.lpm_mode == level;
}

void switch_frequencies(int32_t low, int32_t extreme) {
    enable_thermal_config("LPM_FREQ", low);
    enable_thermal_config("ELPM_FREQ", extreme);
}

}  // namespace

void cb_set_lpm(void) {
    pthread_mutex_lock(&lpm.lpm_lock);
    if (is_level_on(level_low)) {
        log_static(debug_features, "LPM set");
        switch_frequencies(1, 0);
    }
    pthread_mutex_unlock(&lpm.lpm_lock);
}

void cb_set_elpm(void) {
    pthread_mutex_lock(&lpm.lpm_lock);
    if (is_level_on(lpm_level_extreme)) {
        log_static(debug_features, "ELPM set");
        switch_frequencies(0, 1);
    }
    pthread_mutex_unlock(&lpm.lpm_lock);
}

int set_lpm_mode(int32_t on, int32_t mode, int32_t fps_cap) {
    if (!lpm.lpm_supported)
        return 0;
    log_static(debug_features, "LPM : %d %d %d", on, mode, fps_cap);
    pthread_mutex_lock(&lpm.lpm_lock);
    lpm.lpm_on = on;
    lpm.lpm_mode = mode;
    switch_frequencies(0, 0);
    pthread_mutex_unlock(&lpm.lpm_lock);
    if (on != 0 && mode == lpm_level_extreme)
        add_timer_event(timer_elpm, extreme_delay_ms, cb_set_elpm);
    else if (on != 0 && mode == level_low)
        add_timer_event(timer_lpm, low_delay_ms, cb_set_lpm);
    const bool capped = on != 0 && mode == lpm_level_extreme && fps_cap != 0;
    return requestor_request_fps(requestor_lpm, capped ? lpm_extreme_fps : lpm_no_cap);
}

int32_t get_lpm_mode(void) {
    pthread_mutex_lock(&lpm.lpm_lock);
    const int32_t level = lpm.lpm_on != 0 ? lpm.lpm_mode : 0;
    pthread_mutex_unlock(&lpm.lpm_lock);
    return level;
}

void init_lpm_config(void) {
    if (init_thermal_engine_support() != 0)
        return;
    log_info("LPM Enabled");
    lpm.lpm_supported = true;
}
