// The figures of the frame interval analysis as it takes them: the frequency levels of the two CPU
// clusters and the GPU, and its tunables. Constant data; any thread may call.
#pragma once

#include <cstdint>

constexpr uint32_t freq_type_cpu = 0;
constexpr uint32_t freq_type_gpu = 1;

// One frequency resource. A level is an index into `freqs`; level 0 is the highest frequency.
struct freq_config {
    int32_t index;        // row of the built-in table
    uint32_t *freqs;      // owned; kHz for a CPU cluster, Hz for the GPU
    uint32_t freq_count;  // 1 to 10
    uint32_t type;
    char name[128];                                    // "TMK_" and the row's name
    int (*set_freq)(const char *name, unsigned freq);  // null: the library has none
    uint32_t downstep;                                 // levels a step
    uint32_t upstep;
    uint32_t lock_threshold;  // hits at a level that lock the resource there; 0: never
};

struct fia_tunables {
    int32_t thresh_bias;       // added to a computed interval threshold
    int32_t hit_rate_percent;  // compared with hit rates
    int32_t margin_percent;    // the margins: (100 - value) x reference / 100
    int32_t hold_margin_percent;
    int32_t upstep_margin_percent;  // of the scale-up target
    int32_t cpu_step_budget;        // the sum of all CPU levels may not exceed it
    int32_t period_divisor;         // of the analyser's fixed periods
};

// The address of `target_fia_tunables`.
const fia_tunables *fia_tunables_config_init(void);

// Number of rows of the frequency table.
int32_t get_freq_config_num(void);

// Fills `config`, whose `index` is set, from its row. 0; -EFAULT, -EINVAL or -ENOMEM with a log
// line.
int get_freq_config(freq_config *config);

// How far the analyser is to move, in levels, and the threshold it is to hold. This configuration
// looks at nothing but the threshold.
constexpr int32_t get_freq_upstep(int32_t /*target_fps*/, uint32_t /*fps*/) {
    return 1;
}
constexpr int32_t get_freq_downstep(int32_t /*target_fps*/, uint32_t /*fps*/) {
    return -1;
}
constexpr int32_t get_target_thresh(int32_t /*target_fps*/, int32_t threshold) {
    return threshold;
}
