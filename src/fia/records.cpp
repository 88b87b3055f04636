#include "fia/records.h"

#include <errno.h>

#include <algorithm>
#include <new>

#include "core/log.h"
#include "core/text.h"

constinit fia_state fia = {};

bool fia_is_enabled(void) {
    fia_data *data = fia.published.load(std::memory_order_acquire);
    return data != nullptr &&
           std::atomic_ref<uint32_t>(data->enabled).load(std::memory_order_acquire) != 0;
}

void fia_publish(void) {
    fia.published.store(fia.data, std::memory_order_release);
    std::atomic_ref<uint32_t>(fia.data->enabled).store(1, std::memory_order_release);
}

void fia_pilot_init_elems(fia_pilot_elem *elems) {
    for (uint32_t i = 0; i < fia_bucket_count; ++i) {
        const uint32_t fps = fia_bucket_fps(i);
        const uint32_t second = static_cast<uint32_t>(interval_second);
        elems[i] = {};
        elems[i].fps = fps;
        elems[i].m_lower = second / fps;
        elems[i].m_upper = fps >= 4 ? second / (fps - 3) : second;
        elems[i].v_lower = all_ones;
    }
}

int fia_create_pilot_table(fia_activity *record) {
    fia_pilot_table *pilot = new (std::nothrow) fia_pilot_table{};
    if (pilot == nullptr) {
        log_error("Failed to allocate memory for pilot table\n");
        return -ENOMEM;
    }
    pilot->mmin = pilot->vmin = all_ones;
    pilot->elems = new (std::nothrow) fia_pilot_elem[fia_bucket_count];
    if (pilot->elems == nullptr) {
        log_error("Failed to allocate memory for pilot table elements\n");
        delete pilot;
        return -ENOMEM;
    }
    fia_pilot_init_elems(pilot->elems);
    record->pilot = pilot;
    return 0;
}

void fia_free_pilot_table(fia_activity *record) {
    if (record->pilot != nullptr)
        delete[] record->pilot->elems;
    delete record->pilot;
    record->pilot = nullptr;
}

void fia_pilot_copy(fia_activity *destination, const fia_activity *source) {
    if (destination == nullptr || source == nullptr)
        return;
    copy_text(destination->name, source->name[0] != '\0' ? source->name : "BLANK");
    destination->rsc_max = source->rsc_max;
    destination->m_active = source->m_active;
    destination->v_active = source->v_active;
    destination->target_fps = source->target_fps;
    destination->jank_thresh = source->jank_thresh;
    destination->jank_period = source->jank_period;
    destination->next = nullptr;

    fia_pilot_elem *elems = destination->pilot->elems;
    *destination->pilot = *source->pilot;
    destination->pilot->elems = elems;
    std::copy_n(source->rsc_idx, source->rsc_max, destination->rsc_idx);
    std::copy_n(source->pilot->elems, fia_bucket_count, elems);
}
