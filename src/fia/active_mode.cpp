#include "fia/active_mode.h"

#include "core/log.h"
#include "fia/clock_manager.h"
#include "fia/mode.h"
#include "fia/period.h"
#include "fia/pilot.h"
#include "fia/scenes.h"
#include "fia/statistics.h"

namespace {

// Periods in intervals, before the tunables divide them.
constexpr int32_t average_intervals = 60;
constexpr int32_t report_intervals = 300;

constexpr uint32_t fps_frames_min = 5;   // before a frame rate counts
constexpr int32_t poor_reports_max = 2;  // that only raise the caps
constexpr int32_t jank_thresh_min = 5;

// Janks of the current report period; under `fia_mutex`.
constinit uint32_t jank_report_cnt = 0;

int32_t percent(uint32_t part, uint32_t whole) {
    return whole != 0 ? static_cast<int32_t>(part * 100) / static_cast<int32_t>(whole) : 0;
}

void step_caps(int32_t step) {
    fia_clock_scale_freq(step);
    fia_restart_rate(fia.data->cur->target_fps);
}

void raise_one_step() {
    step_caps(get_freq_upstep(fia.data->cur->target_fps, fia.data->fps));
}

void lower_one_step() {
    step_caps(get_freq_downstep(fia.data->cur->target_fps, fia.data->fps));
}

// Leaves AM for a new measurement; the scene remembers the levels that it had reached.
void restart_pilot_from_active() {
    fia_activity *cur = fia.data->cur;
    raise_one_step();
    fia_clock_get_freq(cur->rsc_max, cur->rsc_idx);
    fia_note_restart(true);
    fia_pilot_start();
}

// ---- every interval

// Frame rate since the last change of a cap; far below the scene's usual one it raises the caps.
void check_frame_rate() {
    fia_data *data = fia.data;
    if (!fia_note_rate(static_cast<uint32_t>(fia_stats_oldest(fia.stats))))
        return;
    const fia_pilot_table *pilot = data->cur->pilot;
    const uint32_t usual_fps = pilot->elems[pilot->msi].fps;
    const uint32_t target = static_cast<uint32_t>(get_target_thresh(
        data->cur->target_fps,
        static_cast<int32_t>(fia_margin(fia.tunables->upstep_margin_percent, usual_fps))));
    if (data->fps < target && data->fps_frames >= fps_frames_min) {
        log_info("FT: %d F: %d", static_cast<int>(target), static_cast<int>(data->fps));
        raise_one_step();
    }
}

int32_t hold_threshold() {
    return static_cast<int32_t>(
        fia_margin(fia.tunables->margin_percent, fia_current_entry()->pilot->h));
}

void count_hit(const fia_interval &now) {
    fia_data *data = fia.data;
    data->hold_thresh = hold_threshold();
    fia_count_total();
    if (now.bucket == fia_no_bucket)
        return;
    fia_current_entry()->pilot->cur_bucket = now.bucket;
    data->cur->pilot->cur_bucket = now.bucket;
    if (fia_bucket_fits(data->cur->pilot, now.bucket, now.var))
        ++data->hit_cnt;
}

// Counts a jank; at most one a jank period raises the caps.
void handle_jank(fia_activity *cur) {
    ++cur->jank_streak;
    ++cur->jank;
    ++jank_report_cnt;
    if (fia_clock_is_maxfreq() != 0 || cur->jank_upsteps > 0 || cur->jank <= cur->jank_thresh)
        return;
    log_debug(debug_features, "J: %d, JT: %d", cur->jank, cur->jank_thresh);
    raise_one_step();
    ++cur->jank_upsteps;
}

void check_jank(const fia_interval &now) {
    fia_activity *cur = fia.data->cur;
    if (now.bucket != fia_no_bucket) {
        if (now.mean != 0 && !fia_bucket_fits(cur->pilot, now.bucket, now.var)) {
            handle_jank(cur);
        } else if (cur->jank_streak != 0) {
            log_debug(debug_features, "Successive Jank: %d", cur->jank_streak);
            cur->jank_streak = 0;
        }
    }
    if (fia_is_period_end(fia_period(fia_jank_intervals))) {
        cur->jank = 0;
        cur->jank_upsteps = 0;
    }
}

void update_moving_averages(const fia_interval &now) {
    fia_data *data = fia.data;
    if (!fia_is_period_end(fia_period(average_intervals)))
        return;
    if (static_cast<uint32_t>(data->mv_idx) >= fia_average_slots) {
        log_error("mv index is out of bound: %d", data->mv_idx);
        return;
    }
    uint64_t &mean = data->mean_hist[data->mv_idx];
    data->mean_sum += now.mean - mean;
    data->cur->m_active = data->mean_sum / fia_average_slots;
    mean = now.mean;

    uint64_t &var = data->var_hist[data->mv_idx];
    data->var_sum += now.var - var;
    data->cur->v_active = data->var_sum / fia_average_slots;
    var = now.var;
    data->mv_idx = data->mv_idx < fia_average_slots - 1 ? data->mv_idx + 1 : 0;
}

// ---- the report

// A profile that never completed does not lower the caps, until a scene change.
void lower_while_held() {
    fia_data *data = fia.data;
    data->hold_thresh = hold_threshold();
    if (data->pm_retry < fia_retry_max && data->hit_rate >= data->hold_thresh)
        lower_one_step();
}

// Three reports below the low threshold in a row, or three below the hold threshold since the last
// good one, end AM; the first two only raise the caps.
void apply_bands() {
    fia_data *data = fia.data;
    if (data->hit_rate < data->low_thresh) {
        if (data->low_cnt++ < poor_reports_max) {
            raise_one_step();
        } else {
            log_info("SC2! PM Start");
            restart_pilot_from_active();
        }
        ++data->below_cnt;
    } else if (data->hit_rate >= data->hold_thresh) {
        data->low_cnt = 0;
        data->below_cnt = 0;
    } else {
        if (data->below_cnt++ < poor_reports_max) {
            raise_one_step();
        } else {
            log_info("PM is required! PM Start");
            restart_pilot_from_active();
        }
        data->low_cnt = 0;
    }
}

void update_jank_threshold() {
    fia_activity *cur = fia.data->cur;
    cur->jank_period = fia_period(fia_jank_intervals);
    const int32_t threshold =
        (100 - fia.data->hold_thresh) * cur->jank_period / 100 + fia.tunables->thresh_bias;
    cur->jank_thresh = threshold + (threshold - get_target_thresh(cur->target_fps, threshold));
    if (cur->jank_thresh < jank_thresh_min)
        cur->jank_thresh = jank_thresh_min;
}

// The period's balance. A measurement may have been restarted on the way; the rest then goes on
// with the values from before and with the entry as `cur`.
void report() {
    fia_data *data = fia.data;
    data->hit_rate = percent(data->hit_cnt, data->frame_total);
    log_info("%d%% (%d/%d) H", data->hit_rate, static_cast<int>(data->hit_cnt),
             static_cast<int>(data->frame_total));
    data->low_thresh = static_cast<int32_t>(
        fia_margin(fia.tunables->hold_margin_percent, fia_current_entry()->pilot->h));
    lower_while_held();
    if (fia_is_scene_changed() != 0) {
        restart_pilot_from_active();
        log_info("SC1! PM Start");
    }
    apply_bands();
    update_jank_threshold();
    log_debug(debug_features, "%d%% (%d/%d) Jank!", percent(jank_report_cnt, data->frame_total),
              static_cast<int>(jank_report_cnt), static_cast<int>(data->frame_total));
    jank_report_cnt = 0;
    data->hit_cnt = 0;
    fia_restart_period();
}

}  // namespace

int32_t fia_active_start(void) {
    fia_data *data = fia.data;
    if (data->cur == nullptr) {
        log_error("No current activity data");
        return 0;
    }
    data->mv_idx = 0;
    data->hit_cnt = 0;
    data->low_cnt = 0;
    data->below_cnt = 0;
    fia_enter_active();
    fia_restart_period();

    // The averages start at the middle of the profile.
    fia_activity *cur = data->cur;
    cur->m_active = (cur->pilot->mmin + cur->pilot->mmax) / 2;
    cur->v_active = (cur->pilot->vmin + cur->pilot->vmax) / 2;
    data->mean_sum = cur->m_active * fia_average_slots;
    data->var_sum = cur->v_active * fia_average_slots;
    for (uint64_t &mean : data->mean_hist)
        mean = cur->m_active;
    for (uint64_t &var : data->var_hist)
        var = cur->v_active;
    return set_target(cur->target_fps);
}

void fia_active_decide(const fia_interval &now) {
    if (fia.data->cur == nullptr) {
        log_error("No current activity data");
        return;
    }
    check_frame_rate();
    count_hit(now);
    check_jank(now);
    update_moving_averages(now);
    if (fia.data->frame_cnt > fia_period(report_intervals))
        report();
}
