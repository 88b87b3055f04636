// Low power mode: two levels that a client switches, each with a thermal configuration that follows
// after a settling delay; the extreme level may cap the frame rate.
//
// The client listener switches, the timer thread (slots 3 and 4) ends the delay, any thread may
// ask. `lpm_lock` makes one step of a level with the switches that hang on it, so that an expiry
// action never switches on what has just been left. It is taken after the timer lock: nothing is
// armed under it, and nothing else is locked there.
#pragma once

#include <cstdint>

// The extreme level, the frame rate that it may be capped at, and the request of no cap.
constexpr int32_t lpm_level_extreme = 2;
constexpr int32_t lpm_extreme_fps = 30;
constexpr int32_t lpm_no_cap = -1;

// Binds the thermal engine; without it every switch is ignored. Load time, before main.
void init_lpm_config(void);

// `on` nonzero, with level `mode` 1 or 2 (extreme); `fps_cap` nonzero caps level 2 at 30 frames per
// second. The frame-rate request's result; 0 where low power mode is not supported.
int set_lpm_mode(int32_t on, int32_t mode, int32_t fps_cap);

// The level that is on, else 0.
int32_t get_lpm_mode(void);

// Timer actions: the end of the delay of level 1 and of level 2.
void cb_set_lpm(void);
void cb_set_elpm(void);
