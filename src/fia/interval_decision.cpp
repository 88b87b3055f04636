#include "fia/interval_decision.h"

#include "core/log.h"
#include "fia/active_mode.h"
#include "fia/clock_manager.h"
#include "fia/mode.h"
#include "fia/period.h"
#include "fia/pilot.h"
#include "fia/records.h"
#include "fia/scenes.h"
#include "fia/statistics.h"

namespace {

// Between two looks at the remembered scenes, in intervals before the tunables divide them.
constexpr int32_t scene_check_intervals = 300;

void finish_measurement() {
    if (fia_pilot_evaluate() == fia_verdict_complete) {
        fia_use_record(fia_store_scene());
        fia_active_start();
    } else if (fia.data->pm_retry >= fia_retry_max) {
        log_info("PM Over:%d", fia_retry_max);
        fia_active_start();
    } else {
        log_info("PM Restart! Retry : %d", fia_count_retry());
        fia_pilot_start();
    }
}

// Whether a remembered scene took over from the measurement.
bool resume_known_scene() {
    fia_activity *scene = fia_select_scene();
    if (scene == nullptr)
        return false;
    fia_use_record(scene);
    fia_clock_set_freq(scene->rsc_max, scene->rsc_idx);
    fia_active_start();
    return true;
}

void measure(const fia_interval &now) {
    const bool has_bucket = now.bucket != fia_no_bucket;
    if (has_bucket)
        fia_current_entry()->pilot->cur_bucket = now.bucket;
    fia_count_total();
    if (has_bucket)
        fia_count_scene_hits(now.bucket, now.var);
    if (fia_is_period_end(fia_period(scene_check_intervals)) && resume_known_scene())
        return;
    if (fia.data->frame_cnt > fia_period(fia_pm_length))
        finish_measurement();
    else if (has_bucket)
        fia_pilot_accumulate(now.var);
}

void decide(int32_t interval_us) {
    if (fia_stats_add(fia.stats, interval_us) != 0)
        return;
    fia_count_frame();
    const fia_interval now = {fia.stats->mean, fia.stats->var, fia_bucket(fia.stats->mean)};
    if (fia.data->mode == fia_mode_am)
        fia_active_decide(now);
    else if (fia.data->mode == fia_mode_pm)
        measure(now);
}

}  // namespace

void notify_fia_interval_changed(int32_t interval_us) {
    if (!fia_is_enabled())
        return;
    pthread_mutex_lock(&fia.fia_mutex);
    decide(interval_us);
    pthread_mutex_unlock(&fia.fia_mutex);
}
