// What automode does, row by row. Constant data; any thread may call.
#pragma once

#include <cstdint>

enum automode_row : uint32_t {
    automode_row_fps = 0,
    automode_row_brightness = 1,
    automode_row_freq = 2,
};
constexpr uint32_t automode_row_count = 3;

// How a row's value is applied. Which types a row may have, automode.cpp says.
struct automode_config {
    uint32_t type;
    char name[32];  // of a thermal configuration
    int32_t on_value;
    int32_t off_value;
    uint32_t enabled;  // 0: the row is not used
};

// A row of a set's built-in table, or null where there is none.
const automode_config *get_automode_configuration(uint32_t set, uint32_t row);
