#include "fia/freq_config.h"

#include <errno.h>
#include <stdio.h>

#include <algorithm>
#include <new>

#include "core/log.h"
#include "fia/freq_tables.h"

const fia_tunables *fia_tunables_config_init(void) {
    return fia_figures_in_use().tunables;
}

int32_t get_freq_config_num(void) {
    return static_cast<int32_t>(tmk_freq_rows);
}

int get_freq_config(freq_config *config) {
    if (config == nullptr) {
        log_error("freq info is null");
        return -EFAULT;
    }
    if (static_cast<uint32_t>(config->index) >= tmk_freq_rows) {
        log_error("freq info index is out of bound");
        return -EINVAL;
    }
    const tmk_freq_row &row = fia_figures_in_use().rows[config->index];
    config->type = row.type;
    snprintf(config->name, sizeof(config->name), "TMK_%s", row.name);

    const uint32_t *end = std::find(row.freqs, row.freqs + freq_level_slots, 0u);
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
