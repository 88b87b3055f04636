// Automode: a game setting that caps frame rate and brightness and switches a frequency
// configuration; a touch lifts the first two until eight seconds after the last one.
//
// Commands come from the client listener and from the timer thread (slot 2). `automode_lock` makes
// one step of each, with every action it takes; it is taken after the timer lock, so nothing is
// armed under it, and before the frame-rate mutex.
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

enum automode_command : uint32_t {
    automode_all_off = 0,
    automode_all_on = 1,
    automode_touch = 2,
    automode_resume = 3,
    automode_game_exit = 4,
};

// Finds out which rows the device supports and registers the callbacks. Always 0.
int init_automode(void);

// Runs a command. 0; -EINVAL for an unknown one or without a usable row; -ECANCELED when it does
// not apply now. Any thread but one that holds `automode_lock`.
int set_switched_automode(uint32_t command);

// Timer action: ends what a touch has lifted.
void resume_autogame_brightness_control(void);

// Binds the kernel's automode node through the library. 0, or a nonzero value with log lines.
int init_automode_kernel_node(void);

// The library's result, or -EINVAL while the node is not bound.
int set_kernel_automode_freq(uint32_t value);
