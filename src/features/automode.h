// Automode: a game setting that caps frame rate and brightness and switches a frequency
// configuration; a touch lifts the first two until eight seconds after the last one.
//
// Commands come from the client listener and from the timer thread (slot 2). `automode_lock` makes
// one step of each, with every action it takes; it is taken after the timer lock, so nothing is
// armed under it, and before the frame-rate mutex.
#pragma once

#include <cstdint>

#include "features/automode_table.h"

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

// Binds the kernel's automode node through the library. 0; -EINVAL with log lines; else the
// library's own answer.
int init_automode_kernel_node(void);

// The library's result, or -EINVAL while the node is not bound.
int set_kernel_automode_freq(uint32_t value);
