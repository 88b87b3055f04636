#include "fia/pilot.h"

#include <assert.h>
#include <inttypes.h>
#include <stdlib.h>

#include "core/log.h"
#include "fia/clock_manager.h"
#include "fia/fbcn.h"
#include "fia/mode.h"
#include "fia/period.h"

namespace {

// The slowest most-sampled bucket that a profile may have: 9 frames per second.
constexpr uint32_t msi_max = 17;

constexpr char rule[] = "===================================================\n";

void find_most_sampled(fia_pilot_table *pilot) {
    pilot->msi = 0;
    for (uint32_t i = 1; i < fia_bucket_count; ++i)
        if (pilot->elems[i].num > pilot->elems[pilot->msi].num)
            pilot->msi = i;
}

// How large a bucket's variance may be. In 32-bit arithmetic, evaluated from left to right.
uint32_t variance_threshold(const fia_pilot_elem *most) {
    const uint32_t margin = static_cast<uint32_t>(fia.tunables->margin_percent);
    const uint32_t d = most->m_upper * margin * 10 / 400;
    return d * d + static_cast<uint32_t>(most->v_upper);
}

// The smallest count of those that together make up the wanted share of all samples. False, with a
// log line, when all of them do not.
bool find_count_threshold(const fia_pilot_table *pilot, uint32_t *threshold) {
    uint32_t counts[fia_bucket_count];
    for (uint32_t i = 0; i < fia_bucket_count; ++i)
        counts[i] = pilot->elems[i].num;
    qsort(counts, fia_bucket_count, sizeof(counts[0]), compare);

    uint32_t sum = 0;
    uint32_t percent = 0;
    for (const uint32_t count : counts) {
        sum += count;
        percent = pilot->total_num != 0 ? sum * 100 / pilot->total_num : 0;
        if (percent >= static_cast<uint32_t>(fia.tunables->hit_rate_percent)) {
            *threshold = count;
            return true;
        }
    }
    log_info("HR is under %d > %d", fia.tunables->hit_rate_percent, static_cast<int>(percent));
    return false;
}

void judge_bucket(fia_pilot_table *pilot, uint32_t index, uint32_t count_threshold) {
    fia_pilot_elem *elem = &pilot->elems[index];
    if (elem->num < count_threshold)
        elem->valid = 0;
    if (elem->v_upper > pilot->vmax)
        pilot->vmax = elem->v_upper;
    if (elem->v_lower < pilot->vmin)
        pilot->vmin = elem->v_lower;
    if (elem->valid != 0) {
        if (elem->m_lower > pilot->mmax) {
            pilot->mmax = elem->m_lower;
            pilot->mmax_idx = static_cast<int32_t>(index);
        }
        if (elem->m_lower < pilot->mmin) {
            pilot->mmin = elem->m_lower;
            pilot->mmin_idx = static_cast<int32_t>(index);
        }
        pilot->valid_num += elem->num;
    }
    if (elem->v_lower == all_ones)
        elem->v_lower = 0;
    log_info("|   %2d  |   %3d   |  %3d  |  %7" PRIu64 "  |  %7" PRIu64 "  |\n",
             static_cast<int>(elem->fps), static_cast<int>(elem->valid),
             static_cast<int>(elem->num), elem->v_lower, elem->v_upper);
}

// Settles which buckets are valid and what they span, and logs the profile as a table.
void settle_profile(fia_pilot_table *pilot, uint32_t count_threshold, uint32_t v_thresh) {
    log_info("%s", rule);
    log_info("|  FPS  |  VALID  |  NUM  |  V_LOWER  |  V_UPPER  |\n");
    log_info("%s", rule);
    pilot->valid_num = 0;  // a measurement that could not be stored is settled again
    for (uint32_t i = 0; i < fia_bucket_count; ++i)
        judge_bucket(pilot, i, count_threshold);
    log_info("%s", rule);

    if (pilot->vmin == all_ones)
        pilot->vmin = 0;
    if (pilot->mmin == all_ones)
        pilot->mmin = 0;
    pilot->h = pilot->valid_num * 100 / pilot->total_num;
    log_info("vmax=%" PRIu64 ", vmin=%" PRIu64 ", mmax=%" PRIu64 ", mmin=%" PRIu64 ", v_thresh=%d",
             pilot->vmax, pilot->vmin, pilot->mmax, pilot->mmin, static_cast<int>(v_thresh));
    log_info("H=%d MSI=%d", static_cast<int>(pilot->h), static_cast<int>(pilot->msi));
}

}  // namespace

int compare(const void *a, const void *b) {
    return static_cast<int>(*static_cast<const uint32_t *>(b) - *static_cast<const uint32_t *>(a));
}

void fia_pilot_start(void) {
    fia_enter_measuring();
    fia_activity *entry = fia.data->cur;
    entry->sm_hits = 0;
    entry->sm_rate = 0;

    fia_pilot_table *pilot = entry->pilot;
    pilot->vmin = pilot->mmin = all_ones;
    pilot->vmax = pilot->mmax = 0;
    pilot->valid_num = 0;
    pilot->total_num = 0;
    pilot->msi = 0;
    fia_pilot_init_elems(pilot->elems);

    if (get_target(entry->target_fps) != 0) {
        log_info("I'm the target! No clear freq");
    } else {
        fia_clock_clear_freq();
        set_target(0);
    }
    fbcn_change_thresholds(0, 0);
    fia_restart_period();
}

void fia_pilot_accumulate(uint64_t var) {
    fia_pilot_table *pilot = fia_current_entry()->pilot;
    assert(pilot->cur_bucket < fia_bucket_count);
    fia_pilot_elem *elem = &pilot->elems[pilot->cur_bucket];
    ++pilot->total_num;
    ++elem->num;
    if (var > elem->v_upper)
        elem->v_upper = var;
    else if (var < elem->v_lower)
        elem->v_lower = var;
}

fia_verdict fia_pilot_evaluate(void) {
    fia_activity *entry = fia_current_entry();
    fia_pilot_table *pilot = entry->pilot;
    find_most_sampled(pilot);
    if (pilot->msi > msi_max) {
        log_info("too high interval at idx:%d", static_cast<int>(pilot->msi));
        return fia_verdict_poor;
    }

    // A measurement without a sample has no most-sampled bucket to take anything from.
    constexpr fia_pilot_elem no_bucket = {};
    const fia_pilot_elem *most = &pilot->elems[pilot->msi];
    if (most->num == 0)
        most = &no_bucket;
    entry->target_fps = static_cast<int32_t>(most->fps) - 1;
    const uint32_t v_thresh = variance_threshold(most);
    for (uint32_t i = 0; i < fia_bucket_count; ++i)
        if (pilot->elems[i].v_upper < v_thresh)
            pilot->elems[i].valid = 1;

    uint32_t count_threshold;
    if (!find_count_threshold(pilot, &count_threshold))
        return fia_verdict_poor;
    settle_profile(pilot, count_threshold, v_thresh);
    if (pilot->h < static_cast<uint32_t>(fia.tunables->hit_rate_percent))
        return fia_verdict_poor;
    log_info("PM Complete!\n");
    fia_note_restart(false);
    return fia_verdict_complete;
}
