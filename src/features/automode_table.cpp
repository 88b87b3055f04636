#include "features/automode_table.h"

namespace {

constexpr uint32_t automode_sets = 1;

constexpr automode_config switched_mode_config[automode_sets][automode_row_count] = {{
    {0, "", 20, -1, 1},
    {0, "", 72, -1, 1},
    {1, "SWAM_FREQ", 1, 0, 1},
}};

}  // namespace

const automode_config *get_automode_configuration(uint32_t set, uint32_t row) {
    return set < automode_sets && row < automode_row_count ? &switched_mode_config[set][row]
                                                           : nullptr;
}
