// The policy state machine: which requestors count while which kind of app is in front.
//
// Callbacks of the mode events hand a state over to the policy thread, which pushes the state's
// grants through the acceptor chain and raises the state's event. A caller waits while the thread
// runs a handler, so nothing that a handler calls may ask for a state.
//
// Lock order: hand-over lock, then request lock. Callers may hold the running-app lock; the policy
// thread never takes it.
#pragma once

#include <cstdint>

enum policy_state : int32_t {
    state_idle = 0,
    state_game_default = 1,
    state_game_tuner = 2,
    state_graphic_tune = 3,
    state_fps_tune = 4,
};
constexpr int32_t policy_state_count = 5;

// Creates the locks, registers the mode callbacks and starts the thread, which enters the idle
// state at once. 0, or -EINVAL with a log line when there is no thread.
int start_policy_manager(void);

// Hands a state over. 0 when the thread is in that state or on its way to it, else 1, after the
// hand-over and before the state's handler has finished. Any thread may call but the policy thread.
int change_state(int32_t state);

// One round of the policy thread: runs the handler of `state`, then waits for the next one.
int32_t policy_run_state(int32_t state);

// The policy thread.
void *process_state(void *);
