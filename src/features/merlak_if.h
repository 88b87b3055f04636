// Tells the merlak service whether a game is in front, at what kind of frame rate, and when the app
// changes. Callbacks run on the threads that raise their events; no state, no lock.
#pragma once

#include <cstdint>

// Registers the callbacks. Always 0.
int init_merlak_if(void);

// The power HAL's game state: a frame rate above 30 or not. Client listener thread. 0 or -EINVAL.
int decide_merlak_state_by_ofmode(uint32_t fps, uint32_t ofvalue);
