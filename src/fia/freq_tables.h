// The figures that a device is tuned by: the frequency levels of its CPU clusters and GPU, and the
// analyser's tunables. Constant data; whoever simulates a device may bring figures of its own.
#pragma once

#include "fia/freq_config.h"

constexpr uint32_t freq_level_slots = 10;

struct tmk_freq_row {
    uint32_t type;
    uint32_t freqs[freq_level_slots];  // level 0 first, ended by a 0; kHz, of the GPU Hz
    char name[20];
};

constexpr uint32_t tmk_freq_rows = 3;
extern const tmk_freq_row tmk_freq_table[tmk_freq_rows];
extern const fia_tunables target_fia_tunables;

// What the daemon works with: `tmk_freq_rows` rows, and the tunables. Any thread may call.
struct fia_figures {
    const tmk_freq_row *rows;
    const fia_tunables *tunables;
};
fia_figures fia_figures_in_use(void);
