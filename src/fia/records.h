// The records of the frame interval analysis and the mapping from an interval to its frame-rate
// bucket.
//
// The analyser's thread builds them once; scenes are added and removed later. After `enabled` has
// been set (release) and seen (acquire), everything here is guarded by `fia_mutex`, which is taken
// after `fia_lock_mutex`; under it the clock manager and the library are called and the app-context
// lock is taken. Intervals are in units of 10 microseconds, variances in the square of that unit.
#pragma once

#include <pthread.h>

#include <atomic>
#include <cstdint>

#include "fia/freq_config.h"

constexpr int32_t fia_activity_count = 23;
constexpr uint32_t fia_bucket_count = 20;
constexpr int32_t fia_sample_count = 4;
constexpr int32_t fia_average_slots = 5;
constexpr int32_t fia_scene_limit = 5;  // an activity's
constexpr uint32_t fia_no_bucket = fia_bucket_count;

constexpr uint64_t interval_60fps = 1666;
constexpr uint64_t interval_second = 100000;
constexpr uint64_t all_ones = UINT64_MAX;

enum fia_mode : uint32_t {
    fia_mode_pm = 0,         // pilot measurement
    fia_mode_am = 1,         // active mode
    fia_mode_suspended = 2,  // all caps released
};

// One frame-rate bucket; bucket i stands for 60 - 3 x i frames per second.
struct fia_pilot_elem {
    uint32_t valid;  // belongs to the activity's profile
    uint32_t fps;
    uint32_t num;      // samples
    uint32_t m_lower;  // shortest interval
    uint32_t m_upper;
    uint64_t v_lower;  // smallest variance seen; all ones: none
    uint64_t v_upper;
};

// The result of a pilot measurement.
struct fia_pilot_table {
    uint32_t cur_bucket;  // of the latest interval
    uint32_t msi;         // the most-sampled bucket
    int32_t mmin_idx;     // buckets of mmin and mmax
    int32_t mmax_idx;
    uint32_t valid_num;  // samples in valid buckets
    uint32_t total_num;
    uint32_t h;     // percentage of samples in valid buckets
    uint64_t mmin;  // smallest and largest m_lower of the valid buckets
    uint64_t mmax;
    uint64_t vmin;  // smallest v_lower and largest v_upper
    uint64_t vmax;
    fia_pilot_elem *elems;  // owned, fia_bucket_count of them
};

// An entry of the activity table, or one of its scenes.
struct fia_activity {
    int32_t idx;  // a scene's 1-based position in its chain; 0: an entry
    uint32_t valid;
    uint32_t *rsc_idx;  // owned: saved clock levels in the clock manager's order
    int32_t rsc_max;
    int32_t scene_cnt;  // entries only
    int32_t jank;       // in the current jank period
    int32_t jank_thresh;
    int32_t jank_period;  // intervals
    int32_t jank_upsteps;
    int32_t jank_streak;
    int32_t target_fps;  // of the most-sampled bucket, less 1
    char name[256];      // "BLANK" in an entry not in use
    int64_t ts;          // monotonic ms at which a scene was stored or last selected
    uint32_t sm_hits;    // scene memory: hits, and their percentage
    uint32_t sm_rate;
    uint64_t m_active;  // moving averages of interval mean and variance
    uint64_t v_active;
    fia_pilot_table *pilot;  // owned
    fia_activity *next;      // owned: the next scene
};

struct fia_data {
    uint32_t enabled;  // publishes the records: fia_is_enabled, fia_publish
    uint32_t running;
    uint32_t mode;
    int32_t act_idx;       // the current activity's entry
    int32_t frame_cnt;     // intervals in the current period
    int32_t pm_retry;      // measurements restarted since the activity was entered
    int32_t mv_idx;        // next slot of the moving averages
    uint32_t hit_cnt;      // AM intervals inside the profile
    uint32_t frame_total;  // AM intervals in the period; in PM, since the last scene check
    int32_t hit_rate;      // percent, of the last report
    int32_t hold_thresh;
    int32_t below_cnt;  // reports below hold_thresh since the last good one
    int32_t low_thresh;
    int32_t low_cnt;      // consecutive reports below low_thresh
    int32_t scene_total;  // over all activities
    uint32_t restarted;   // the measurement was started from AM
    uint32_t fps_frames;  // AM intervals since the last frequency change
    uint32_t fps;         // frame rate since then
    uint32_t fps_interval_sum;
    uint64_t mean_sum;  // of the moving-average slots
    uint64_t var_sum;
    uint64_t mean_hist[fia_average_slots];
    uint64_t var_hist[fia_average_slots];
    fia_activity *cur;  // the entry in PM, a scene in AM; null until the first measurement
};

struct fia_stats {
    int32_t idx;  // position in the ring of samples
    uint64_t mean;
    uint64_t var;
    uint64_t sum;
    uint64_t sum_sq;
    uint64_t samples[fia_sample_count];
};

// The analyser's state. The pointers are set by the analyser's thread before it publishes them.
struct fia_state {
    pthread_mutex_t fia_mutex;
    fia_data *data;
    fia_stats *stats;
    fia_activity *activities;  // fia_activity_count entries
    const fia_tunables *tunables;
    std::atomic<fia_data *> published;
};
extern fia_state fia;

// Whether the records exist and may be used; any thread, without a lock.
bool fia_is_enabled(void);

// Lets other threads use the records. The analyser's thread, when all of them exist.
void fia_publish(void);

// The entry of the current activity.
inline fia_activity *fia_current_entry(void) {
    return &fia.activities[fia.data->act_idx];
}

// A fixed period of `intervals`, as the tunables divide it; 0 where they say 0.
constexpr int32_t fia_divided(int32_t intervals, const fia_tunables &tunables) {
    return tunables.period_divisor != 0 ? intervals / tunables.period_divisor : 0;
}
inline int32_t fia_period(int32_t intervals) {
    return fia_divided(intervals, *fia.tunables);
}

// Whether `frame_cnt` is a multiple of `period`; a period of 0 never matches.
inline bool fia_is_period_end(int32_t period) {
    return period != 0 &&
           static_cast<uint32_t>(fia.data->frame_cnt) % static_cast<uint32_t>(period) == 0;
}

// The share `percent` short of 100 of `reference`.
constexpr uint32_t fia_margin(int32_t percent, uint32_t reference) {
    return static_cast<uint32_t>(100 - percent) * reference / 100;
}

// Frames per second that a bucket stands for.
constexpr uint32_t fia_bucket_fps(uint32_t bucket) {
    return 60 - 3 * bucket;
}

// Frame-rate bucket of a mean interval, or fia_no_bucket for one longer than a second.
inline uint32_t fia_bucket(uint64_t mean) {
    const uint64_t fps = mean >= interval_60fps ? interval_second / mean : 60;
    return static_cast<uint32_t>((60 - fps) / 3);
}

// Whether a variance lies inside the bucket's part of the profile.
inline bool fia_bucket_fits(const fia_pilot_table *pilot, uint32_t bucket, uint64_t var) {
    const fia_pilot_elem *elem = &pilot->elems[bucket];
    return elem->valid != 0 && elem->v_lower <= var && elem->v_upper >= var;
}

// Empties the buckets.
void fia_pilot_init_elems(fia_pilot_elem *elems);

// Gives a record an initialised pilot table. 0, or -ENOMEM with a log line and without one.
int fia_create_pilot_table(fia_activity *record);

// Frees it; a record without one is left alone.
void fia_free_pilot_table(fia_activity *record);

// Copies a measurement, with the name and the clock levels that go with it, into a record that owns
// its arrays. Does nothing if either is null.
void fia_pilot_copy(fia_activity *destination, const fia_activity *source);
