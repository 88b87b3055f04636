// Worker threads: created once, named for `top -H`, never joined; and their waiting for each other.
#pragma once

#include <pthread.h>

// Starts a thread running `body`. `name` has at most 15 characters. 0, or a positive errno value.
int thread_start(const char *name, void *(*body)(void *));

// Waits until somebody wakes the condition, with `lock` released meanwhile; it may return without
// that, so the caller tests what it waits for.
void thread_wait(pthread_cond_t *condition, pthread_mutex_t *lock);

// Wakes one thread that waits. The caller holds the condition's lock.
void thread_wake(pthread_cond_t *condition);
