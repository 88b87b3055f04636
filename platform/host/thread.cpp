#include "platform/thread.h"

#include <string.h>

#include "platform/host/recording.h"
#include "platform/host/turns.h"

int thread_start(const char *name, void *(*body)(void *)) {
    // The one thread that others wait for takes turns with them.
    if (recording_is_on() && strcmp(name, "policy") == 0)
        return turns_start(name, body);
    pthread_t thread;
    const int error = pthread_create(&thread, nullptr, body, nullptr);
    if (error != 0)
        return error;
    pthread_setname_np(thread, name);
    pthread_detach(thread);
    return 0;
}

void thread_wait(pthread_cond_t *condition, pthread_mutex_t *lock) {
    if (recording_is_on())
        turns_wait(condition, lock);
    else
        pthread_cond_wait(condition, lock);
}

void thread_wake(pthread_cond_t *condition) {
    if (recording_is_on())
        turns_wake(condition);
    else
        pthread_cond_signal(condition);
}
