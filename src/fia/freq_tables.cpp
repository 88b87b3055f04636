#include "fia/freq_tables.h"

constexpr tmk_freq_row tmk_freq_table[tmk_freq_rows] = {
    {freq_type_cpu, {2803200, 1612800, 1363200, 902400, 825600}, "CLUSTER1"},
    {freq_type_cpu, {1766400, 1612800, 1420800, 979200}, "CLUSTER0"},
    {freq_type_gpu, {710000000, 596000000, 414000000}, "GPU"},
};

constexpr fia_tunables target_fia_tunables = {
    .thresh_bias = 1,
    .hit_rate_percent = 75,
    .margin_percent = 15,
    .hold_margin_percent = 10,
    .upstep_margin_percent = 20,
    .cpu_step_budget = 6,
    .period_divisor = 1,
};
