// Runtime debug logging: reads the two properties that set the gate, at start-up (main) and each
// time the screen goes off (kernel event monitor). It locks nothing.
#pragma once

// Registers the re-read for EV_SCREEN_OFF and reads both properties. Always 0.
int init_debug_mode(void);

// Reads both properties again.
void update_rt_debug_status(void);
