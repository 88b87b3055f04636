#include "features/low_power_mode.h"

#include <atomic>

#include "core/log.h"
#include "core/timer.h"
#include "features/thermal_engine.h"
#include "resource/fps_manager.h"
#include "resource/requestor.h"

namespace {

constexpr int32_t level_low = 1;
constexpr int32_t level_extreme = 2;
constexpr int64_t low_delay_ms = 10000;
constexpr int64_t extreme_delay_ms = 30000;
constexpr int32_t extreme_fps = 30;
constexpr int32_t no_cap = -1;

constinit struct {
    std::atomic<bool> lpm_supported = false;
    std::atomic<int32_t> lpm_on = 0;
    std::atomic<int32_t> lpm_mode = 0;
} lpm;

bool is_level_on(int32_t level) {
    return lpm.lpm_on.load() != 0 && lpm.lpm_mode.load() == level;
}

void switch_frequencies(int32_t low, int32_t extreme) {
    enable_thermal_config("LPM_FREQ", low);
    enable_thermal_config("ELPM_FREQ", extreme);
}

}  // namespace

void cb_set_lpm(void) {
    if (!is_level_on(level_low))
        return;
    log_static(debug_features, "LPM set");
    switch_frequencies(1, 0);
}

void cb_set_elpm(void) {
    if (!is_level_on(level_extreme))
        return;
    log_static(debug_features, "ELPM set");
    switch_frequencies(0, 1);
}

int set_lpm_mode(int32_t on, int32_t mode, int32_t fps_cap) {
    if (!lpm.lpm_supported.load())
        return 0;
    log_static(debug_features, "LPM : %d %d %d", on, mode, fps_cap);
    lpm.lpm_on.store(on);
    lpm.lpm_mode.store(mode);
    switch_frequencies(0, 0);
    if (on != 0 && mode == level_extreme)
        add_timer_event(timer_elpm, extreme_delay_ms, cb_set_elpm);
    else if (on != 0 && mode == level_low)
        add_timer_event(timer_lpm, low_delay_ms, cb_set_lpm);
    const bool capped = on != 0 && mode == level_extreme && fps_cap != 0;
    return requestor_request_fps(requestor_lpm, capped ? extreme_fps : no_cap);
}

int32_t get_lpm_mode(void) {
    return lpm.lpm_supported.load() && lpm.lpm_on.load() != 0 ? lpm.lpm_mode.load() : 0;
}

void init_lpm_config(void) {
    if (init_thermal_engine_support() != 0)
        return;
    log_info("LPM Enabled");
    lpm.lpm_supported.store(true);
}
