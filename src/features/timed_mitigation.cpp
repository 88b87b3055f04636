#include "features/timed_mitigation.h"

#include <errno.h>

#include <atomic>

#include "core/log.h"
#include "core/timer.h"
#include "features/low_power_mode.h"

// The thermal client library, which the daemon is linked with.
extern "C" int request_tmr_2cluster(unsigned first, unsigned second);
extern "C" int request_tmr_single_cluster(unsigned first);

namespace {

constexpr uint32_t two_clusters = 2;
constexpr uint32_t release_value = UINT32_MAX;
constexpr int32_t lpm_extreme = 2;
constexpr int64_t app_change_ms = 2000;
constexpr int64_t soft_key_ms = 800;

// Written at start-up, before `tmr_activated` is set.
constinit struct {
    uint32_t cluster_mode = 1;
    uint32_t second_value = 0;
    uint32_t first_value = 0;
} tmr_config;

constinit std::atomic<bool> tmr_activated = false;

void request_clusters(uint32_t first, uint32_t second) {
    if (tmr_config.cluster_mode == two_clusters)
        request_tmr_2cluster(first, second);
    else
        request_tmr_single_cluster(first);
}

}  // namespace

void activate_tmr_2cluster(uint32_t first, uint32_t second) {
    tmr_config.cluster_mode = two_clusters;
    tmr_config.second_value = second;
    tmr_config.first_value = first;
    tmr_activated.store(true, std::memory_order_release);
}

void cb_tmr_release(void) {
    request_clusters(release_value, release_value);
}

int request_timed_tmr(int64_t duration_ms) {
    if (get_lpm_mode() == lpm_extreme) {
        log_info("TMR is interrupted by LPM!");
        return -EINVAL;
    }
    if (!tmr_activated.load(std::memory_order_acquire)) {
        log_info("TMR is not activated.");
        return -EINVAL;
    }
    const int result = add_timer_event(timer_mitigation, duration_ms, cb_tmr_release);
    if (result == 0)
        request_clusters(tmr_config.first_value, tmr_config.second_value);
    else if (result < 0)
        log_error("Failed to add internal timer");
    return result;
}

void cb_app_change(void) {
    log_debug(debug_features, "TMR : App change 2000ms");
    request_timed_tmr(app_change_ms);
}

void cb_soft_key(void) {
    log_debug(debug_features, "TMR : Soft Key 800ms");
    request_timed_tmr(soft_key_ms);
}
