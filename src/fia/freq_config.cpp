#include "fia/freq_config.h"

#include <errno.h>
#include <stdio.h>

#include <algorithm>
#include <new>

#include "core/log.h"

namespace {

constexpr uint32_t level_slots = 10;

struct tmk_freq_row {
    uint32_t type;
    uint32_t freqs[level_slots];  // level 0 first, ended by a 0
    char name[20];
};

constexpr tmk_freq_row tmk_freq_table[] = {
    {freq_type_cpu, {2803200, 1612800, 1363200, 902400, 825600}, "CLUSTER1"},
    {freq_type_cpu, {1766400, 1612800, 1420800, 979200}, "CLUSTER0"},
    {freq_type_gpu, {710000000, 596000000, 414000000}, "GPU"},
};
constexpr uint32_t tmk_freq_rows = sizeof(tmk_freq_table) / sizeof(tmk_freq_table[0]);

constexpr fia_tunables target_fia_tunables = {
    .thresh_bias = 1,
    .hit_rate_percent = 75,
    .margin_percent = 15,
    .hold_margin_percent = 10,
    .upstep_margin_percent = 20,
    .cpu_step_budget = 6,
    .period_divisor = 1,
};

}  // namespace

const fia_tunables *fia_tunables_config_init(void) {
    return &target_fia_tunables;
}

int32_t get_freq_config_num(void) {
    return static_cast<int32_t>(tmk_freq_rows);
}

int32_t get_freq_config(freq_config *config) {
    if (config == nullptr) {
        log_error("freq info is null");
        return -EFAULT;
    }
    if (static_cast<uint32_t>(config->index) >= tmk_freq_rows) {
        log_error("freq info index is out of bound");
        return -EINVAL;
    }
    const tmk_freq_row &row = tmk_freq_table[config->index];
    config->type = row.type;
    snprintf(config->name, sizeof(config->name), "TMK_%s", row.name);

    const uint32_t *end = std::find(row.freqs, row.freqs + level_slots, 0u);
    const uint32_t count = static_cast<uint32_t>(end - row.freqs);
    if (count == 0) {
        log_error("No data on %s freq array. plz fill in!", row.name);
        return -EINVAL;
    }
    config->freqs = new (std::nothrow) uint32_t[count];
    if (config->freqs == nullptr) {
        log_error("Not enough memory to configure freq");
        return -ENOMEM;
    }
    std::copy(row.freqs, end, config->freqs);
    config->freq_count = count;
    return 0;
}
