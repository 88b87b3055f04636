#include "platform/thread.h"

#include <pthread.h>

int thread_start(const char *name, void *(*body)(void *)) {
    pthread_t thread;
    const int error = pthread_create(&thread, nullptr, body, nullptr);
    if (error != 0)
        return error;
    pthread_setname_np(thread, name);
    pthread_detach(thread);
    return 0;
}
