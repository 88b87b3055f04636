#include "fia/freq_tables.h"

fia_figures fia_figures_in_use(void) {
    return {tmk_freq_table, &target_fia_tunables};
}
