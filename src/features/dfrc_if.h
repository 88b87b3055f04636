// The display frame-rate bridge: forwards events to the frame-rate service, each as one message,
// but for the closing of a floating window, which is told only when none has opened again within a
// second (timer slot 5).
//
// Callbacks run on the threads that raise their events, the delayed one on the timer thread. This
// module's lock makes one step of the floating window's flag and the message that hangs on it, so
// that the last one sent is true. It is taken after the timer lock, and nothing is locked or armed
// under it.
#pragma once

// Registers the callbacks. Always 0. Start-up, once the frame-rate manager has started.
int init_dfrc_if(void);

// Timer action: tells of a floating window that has stayed closed.
void cb_dfrc_floating_window_delayed_off(void);
