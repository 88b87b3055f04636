#include "fia/analyser_records.h"

#include <errno.h>

#include <new>

#include "core/log.h"
#include "core/text.h"
#include "fia/clock_manager.h"
#include "fia/mode.h"
#include "fia/records.h"
#include "fia/scenes.h"
#include "fia/statistics.h"

namespace {

int create_entry(int32_t index) {
    fia_activity *entry = &fia.activities[index];
    copy_text(entry->name, "BLANK");
    entry->rsc_max = fia_clock_get_freq_policy();
    if (entry->rsc_max < 1) {
        log_error("act[%d] rsc_max value is invalid:%d", index, entry->rsc_max);
        return -EINVAL;
    }
    entry->rsc_idx = new (std::nothrow) uint32_t[static_cast<size_t>(entry->rsc_max)]{};
    if (entry->rsc_idx == nullptr) {
        log_error("act[%d] rsc_idx is null", index);
        return -ENOMEM;
    }
    return 0;
}

int create_activities() {
    fia.activities = new (std::nothrow) fia_activity[fia_activity_count]{};
    if (fia.activities == nullptr) {
        log_error("Failed to Initialize Activity Table\n");
        return -ENOMEM;
    }
    int result = 0;
    for (int32_t i = 0; result == 0 && i < fia_activity_count; ++i)
        result = create_entry(i);
    for (int32_t i = 0; result == 0 && i < fia_activity_count; ++i)
        result = fia_create_pilot_table(&fia.activities[i]);
    return result;
}

}  // namespace

int fia_create_records(void) {
    fia.tunables = fia_tunables_config_init();
    fia.data = new (std::nothrow) fia_data{};
    if (fia.data == nullptr) {
        log_error("Failed to allocate memory for fia data\n");
        return -ENOMEM;
    }
    fia.data->running = 1;
    const int result = create_activities();
    if (result != 0)
        return result;
    fia.stats = new (std::nothrow) fia_stats;
    if (fia.stats == nullptr) {
        log_error("Failed to allocate memory for fia stats\n");
        return -ENOMEM;
    }
    fia_stats_init(fia.stats);
    fia_enter_suspended();
    return 0;
}

void fia_free_activities(void) {
    if (fia.data != nullptr)
        fia.data->running = 0;
    for (int32_t i = 0; fia.activities != nullptr && i < fia_activity_count; ++i) {
        fia_activity *entry = &fia.activities[i];
        fia_remove_all_scenes(entry);
        log_debug(debug_features, "%s activity clear!", entry->name);
        entry->valid = 0;
        fia_free_pilot_table(entry);
        delete[] entry->rsc_idx;
    }
    delete[] fia.activities;
    fia.activities = nullptr;
}

void fia_free_records(void) {
    delete fia.stats;
    fia.stats = nullptr;
    delete fia.data;
    fia.data = nullptr;
}
