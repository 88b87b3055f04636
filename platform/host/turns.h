// Threads in turn: whoever is at a happening, and one other, the policy thread, of which exactly
// one runs. Who waits gives the turn away; whoever is at a happening gives it when that is over.
// Used where the order of things must be known: by a simulator, and by a host that records.
#pragma once

#include <pthread.h>

// The thread whose turn it is, by its name; and setting the name of the calling one.
const char *turns_thread(void);
void turns_set_thread(const char *name);

// Whether the caller is the other thread.
bool turns_is_other(void);

// Starts the other thread, which first runs when given a turn. 0 or a positive errno value.
int turns_start(const char *name, void *(*body)(void *));

// Gives the other thread its turn until it waits for something that has not happened yet.
void turns_let_other_run(void);

// Waiting and waking, as the platform's threads do. The calling thread has the turn.
void turns_wait(pthread_cond_t *condition, pthread_mutex_t *lock);
void turns_wake(const pthread_cond_t *condition);
