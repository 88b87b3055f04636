#include "fia/scenes.h"

#include <assert.h>
#include <errno.h>
#include <inttypes.h>
#include <string.h>

#include <algorithm>
#include <new>

#include "core/log.h"
#include "core/text.h"
#include "core/timer.h"
#include "fia/clock_manager.h"
#include "fia/mode.h"
#include "fia/period.h"

namespace {

constexpr size_t name_length_max = sizeof(fia_activity::name) - 1;
constexpr char dashes[] = "--------------------------------------------------------";

// How far the mean may drift beyond the slowest and the fastest valid bucket.
constexpr int32_t drift_buckets = 2;

bool has_name(const fia_activity *entry, const char *name) {
    return entry->valid != 0 && strncmp(entry->name, name, name_length_max) == 0;
}

// The slot for a new activity: its own, else a free one, else the one used longest ago.
int32_t choose_slot(int32_t hash) {
    fia_activity *const first = fia.activities;
    fia_activity *const end = first + fia_activity_count;
    if (first[hash].valid == 0)
        return hash;
    const auto is_free = [](const fia_activity &entry) { return entry.valid == 0; };
    fia_activity *slot = std::find_if(first, end, is_free);
    if (slot == end)
        slot = std::min_element(
            first, end, [](const fia_activity &a, const fia_activity &b) { return a.ts < b.ts; });
    return static_cast<int32_t>(slot - first);
}

void free_scene(fia_activity *scene) {
    fia_free_pilot_table(scene);
    delete[] scene->rsc_idx;
    delete scene;
}

// A scene with all its parts, or null with a log line.
fia_activity *create_scene() {
    fia_activity *scene = new (std::nothrow) fia_activity{};
    if (scene == nullptr) {
        log_error("Failed to allocate memory for activity data");
        return nullptr;
    }
    scene->rsc_max = fia_clock_get_freq_policy();
    scene->rsc_idx = new (std::nothrow) uint32_t[static_cast<size_t>(scene->rsc_max)]{};
    if (scene->rsc_idx == nullptr)
        log_error("Failed to allocate memory for activity data");
    if (scene->rsc_idx == nullptr || fia_create_pilot_table(scene) != 0) {
        free_scene(scene);
        return nullptr;
    }
    return scene;
}

void remove_counted_scene(fia_activity *entry, fia_activity *predecessor) {
    fia_remove_scene(predecessor);
    --entry->scene_cnt;
    --fia.data->scene_total;
}

void remove_oldest_scene(fia_activity *entry) {
    assert(entry->next != nullptr);
    fia_activity *predecessor = entry;
    for (fia_activity *record = entry; record->next != nullptr; record = record->next)
        if (record->next->ts < predecessor->next->ts)
            predecessor = record;
    remove_counted_scene(entry, predecessor);
}

void log_scene(const fia_activity *scene) {
    if (rtDebugMode(debug_features) == 0)
        return;
    uint32_t levels[3] = {};
    std::copy_n(scene->rsc_idx, std::min(scene->rsc_max, 3), levels);
    log_info("%s", dashes);
    log_info("idx:%d, name:%s, ts:%" PRId64 ", rsc1:%d, rsc2:%d, rsc3:%d, hit_rate:%d", scene->idx,
             scene->name, scene->ts, static_cast<int>(levels[0]), static_cast<int>(levels[1]),
             static_cast<int>(levels[2]), static_cast<int>(scene->pilot->h));
    log_info("%s", dashes);
}

}  // namespace

int32_t fia_name_hash(const char *name) {
    int32_t name_sum = 0;
    for (size_t i = 0; i < name_length_max && name[i] != '\0'; ++i)
        name_sum += static_cast<unsigned char>(name[i]);
    const int32_t hash = name_sum % fia_activity_count;
    log_debug(debug_features, "%s name_sum: %d hash: %d", name, name_sum, hash);
    return hash;
}

int32_t fia_is_activity_in_list(int32_t hash, const char *name) {
    if (hash < 0 || hash >= fia_activity_count) {
        log_debug(debug_features, "Invalid hash: %d", hash);
        return -1;
    }
    if (has_name(&fia.activities[hash], name))
        return hash;
    for (int32_t i = 0; i < fia_activity_count; ++i)
        if (has_name(&fia.activities[i], name))
            return i;
    return -1;
}

void fia_use_activity(int32_t index) {
    fia.data->act_idx = index;
}

int32_t fia_save_activity(int32_t hash, const char *name) {
    fia_use_activity(choose_slot(hash));
    fia_activity *entry = fia_current_entry();
    fia_remove_all_scenes(entry);
    log_debug(debug_features, "%s activity clear!", entry->name);
    entry->valid = 0;
    copy_text(entry->name, name);
    entry->valid = 1;
    return fia.data->act_idx;
}

void fia_remove_scene(fia_activity *record) {
    if (record == nullptr || record->next == nullptr) {
        log_debug(debug_features, "Nothing to remove");
        return;
    }
    fia_activity *removed = record->next;
    record->next = removed->next;
    free_scene(removed);
    for (fia_activity *scene = record->next; scene != nullptr; scene = scene->next)
        --scene->idx;
    log_debug(debug_features, "%s scene removed!", record->name);
}

void fia_remove_all_scenes(fia_activity *entry) {
    while (entry->next != nullptr)
        remove_counted_scene(entry, entry);
}

void fia_count_scene_hits(uint32_t bucket, uint64_t var) {
    for (fia_activity *scene = fia_current_entry()->next; scene != nullptr; scene = scene->next)
        if (fia_bucket_fits(scene->pilot, bucket, var))
            ++scene->sm_hits;
}

fia_activity *fia_select_scene(void) {
    const uint32_t total = fia.data->frame_total;
    fia_restart_total();

    fia_activity *best = nullptr;
    uint32_t best_rate = 0;
    for (fia_activity *scene = fia_current_entry()->next; scene != nullptr; scene = scene->next) {
        scene->sm_rate = total != 0 ? scene->sm_hits * 100 / total : 0;
        log_scene(scene);
        if (scene->sm_rate > best_rate &&
            scene->sm_rate > fia_margin(fia.tunables->margin_percent, scene->pilot->h)) {
            best = scene;
            best_rate = scene->sm_rate;
        }
        scene->sm_hits = 0;
    }
    if (best == nullptr || fia.data->restarted != 0)
        return nullptr;
    log_info("SM at idx:%d Start AM", best->idx);
    best->ts = get_current_monotonic_ms();
    return best;
}

fia_activity *fia_store_scene(void) {
    fia_activity *entry = fia_current_entry();
    fia_activity *scene = create_scene();
    if (scene == nullptr)
        return nullptr;
    if (entry->scene_cnt >= fia_scene_limit)
        remove_oldest_scene(entry);
    fia_pilot_copy(scene, entry);
    scene->idx = 1;
    fia_activity *tail = entry;
    for (; tail->next != nullptr; tail = tail->next)
        ++scene->idx;
    scene->valid = 1;
    scene->ts = get_current_monotonic_ms();
    tail->next = scene;
    ++entry->scene_cnt;
    ++fia.data->scene_total;
    return scene;
}

int32_t fia_is_scene_changed(void) {
    const fia_data *data = fia.data;
    if (data->cur == nullptr || data->mode != fia_mode_am)
        return 0;
    const fia_activity *cur = data->cur;
    const fia_pilot_table *pilot = cur->pilot;
    const int32_t last = static_cast<int32_t>(fia_bucket_count) - 1;
    const uint32_t max = pilot->elems[std::min(pilot->mmax_idx + drift_buckets, last)].m_upper;
    const uint32_t min = pilot->elems[std::max(pilot->mmin_idx - drift_buckets, 0)].m_lower;
    const uint64_t v_thresh = pilot->vmax + pilot->mmax * pilot->mmax;

    if (cur->m_active > max || cur->m_active < min)
        log_info("M Active: %" PRIu64 ", M Max: %d, M Min: %d", cur->m_active,
                 static_cast<int>(max), static_cast<int>(min));
    else if (cur->v_active > v_thresh)
        log_info("V Active: %" PRIu64 ", V Thresh: %" PRIu64, cur->v_active, v_thresh);
    else
        return 0;
    fia_allow_retries();
    return 1;
}
