#include "platform/thread.h"

int thread_start(const char *name, void *(*body)(void *)) {
    pthread_t thread;
    const int error = pthread_create(&thread, nullptr, body, nullptr);
    if (error != 0)
        return error;
    pthread_setname_np(thread, name);
    pthread_detach(thread);
    return 0;
}

void thread_wait(pthread_cond_t *condition, pthread_mutex_t *lock) {
    pthread_cond_wait(condition, lock);
}

void thread_wake(pthread_cond_t *condition) {
    pthread_cond_signal(condition);
}
