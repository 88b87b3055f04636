// Drives the osprin control of the hardware library: whether a game is in front, and its governor.
// Callbacks run on the threads that raise their events; bound at start-up, no further state, no
// lock.
#pragma once

#include <cstdint>

// Binds the library and registers the callbacks. 0, or -EINVAL without a registration.
int init_osprin_if(void);

// The power HAL's game state: governor 0 for a frame rate of at most 30 with an of-value, else 1.
// Client listener thread. The library's result, or -EINVAL while it is not bound.
int decide_osprin_state(uint32_t fps, uint32_t ofvalue);
