// The intervals of the present period, and the frame rate since a cap was changed last. Nobody else
// writes these fields. Called with `fia_mutex` held, on every interval.
#pragma once

#include "fia/records.h"

// Starts a period.
inline void fia_restart_period(void) {
    fia.data->frame_total = 0;
    fia.data->frame_cnt = 0;
}

// Starts to count what a scene check looks at.
inline void fia_restart_total(void) {
    fia.data->frame_total = 0;
}

// Counts an interval of the period. Counted on while suspended, for as long as that lasts; it may
// wrap.
inline void fia_count_frame(void) {
    fia.data->frame_cnt = static_cast<int32_t>(static_cast<uint32_t>(fia.data->frame_cnt) + 1);
}

// Counts an interval that PM or AM looks at.
inline void fia_count_total(void) {
    ++fia.data->frame_total;
}

// Starts the frame rate anew at what is expected, in frames per second.
inline void fia_restart_rate(int32_t target_fps) {
    fia.data->fps_frames = 0;
    fia.data->fps_interval_sum = 0;
    fia.data->fps = static_cast<uint32_t>(target_fps);
}

// Notes an interval, in units of 10 microseconds. False while there is no rate to be had.
inline bool fia_note_rate(uint32_t interval) {
    fia_data *data = fia.data;
    ++data->fps_frames;
    data->fps_interval_sum += interval;
    if (data->fps_interval_sum == 0)
        return false;
    data->fps = data->fps_frames * 1000000 / 10 / data->fps_interval_sum;
    return true;
}
