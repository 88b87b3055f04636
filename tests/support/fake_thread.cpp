#include "tests/support/fake_thread.h"

#include "platform/thread.h"

std::vector<std::string> &requested_threads(void) {
    static std::vector<std::string> names;
    return names;
}

int thread_start(const char *name, void *(*)(void *)) {
    requested_threads().push_back(name);
    return 0;
}

void thread_wait(pthread_cond_t *condition, pthread_mutex_t *lock) {
    pthread_cond_wait(condition, lock);
}

void thread_wake(pthread_cond_t *condition) {
    pthread_cond_signal(condition);
}
