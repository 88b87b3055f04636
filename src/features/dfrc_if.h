// The display frame-rate bridge: forwards events to the frame-rate service, each as one message,
// but for the closing of a floating window, which is told only when none has opened again within a
// second (timer slot 5).
//
// Callbacks run on the threads that raise their events, the delayed one on the timer thread. The
// one flag they share is a single word without a lock.
#pragma once

// Registers the callbacks. Always 0. Start-up, once the frame-rate manager has started.
int init_dfrc_if(void);

// Timer action: tells of a floating window that has stayed closed.
void cb_dfrc_floating_window_delayed_off(void);
