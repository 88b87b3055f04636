// The running-app manager: turns the many reports about what is on the screen into one app mode,
// and announces it: the exit event of the mode that is left, the enter event of the mode that
// holds.
//
// Reports arrive as events on the client listener and on the kernel event monitor. The running-app
// lock makes one step of a report's update, its evaluation and its announcement, so that modes are
// announced in the order in which they were evaluated and what the last listener heard is what the
// record holds. It is taken before every other lock of the daemon but the timer lock, which neither
// is taken under it by this module nor held by anyone who takes it; the thread that holds it may
// take it again, because a listener may itself report. The policy thread, which listeners wait for,
// never takes it.
#pragma once

#include <cstdint>

enum app_mode : int32_t {
    mode_none = -1,
    mode_game_default = 0,
    mode_game_tuner = 1,
    mode_geo = 2,
    mode_browser = 3,
    mode_sns = 4,
    mode_gallery = 5,
    mode_home = 8,
};

// Creates the record and registers the callbacks. 0, or -ENOMEM with a log line.
int init_el(void);

// Logs the record and derives the app mode from it. Any thread may call.
int32_t get_available_app_mode(void);

// Derives the app mode and raises its events: the enter event every time, the exit event of the
// mode announced before when it is another one. Any thread may call but the policy thread.
void notify_running_app_events(void);
