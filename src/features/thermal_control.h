// Thermal control: which thermal configurations hold while the camera records, a game or a
// navigation app is in front, or an activity is shown that has a configuration of its own.
//
// Callbacks run on the threads that raise their events and keep no state, but for the activity's
// configuration, which the client listener alone touches. Nothing is locked.
#pragma once

// Sets timed mitigation up and registers the callbacks. Always 0.
int init_ts(void);
