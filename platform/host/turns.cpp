#include "platform/host/turns.h"

#include <stdio.h>
#include <stdlib.h>

namespace {

enum context { context_caller, context_other, context_count };

constinit struct {
    pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t passed = PTHREAD_COND_INITIALIZER;  // the turn; with `lock`
    context turn = context_caller;                     // under `lock`
    // Under the turn:
    bool started = false;
    const char *thread = "dvxd";  // the running one's name
    const char *names[context_count] = {"", ""};
    void *(*body)(void *) = nullptr;
    const pthread_cond_t *awaited[context_count] = {};  // null: could run
} turns;

// Passes the turn on and waits to get it back.
void pass_turn(context from) {
    const context to = from == context_caller ? context_other : context_caller;
    turns.names[from] = turns.thread;
    turns.thread = turns.names[to];
    pthread_mutex_lock(&turns.lock);
    turns.turn = to;
    pthread_cond_broadcast(&turns.passed);
    while (turns.turn != from)
        pthread_cond_wait(&turns.passed, &turns.lock);
    pthread_mutex_unlock(&turns.lock);
}

thread_local bool is_other = false;

void *run_other(void *) {
    is_other = true;
    pthread_mutex_lock(&turns.lock);
    while (turns.turn != context_other)
        pthread_cond_wait(&turns.passed, &turns.lock);
    pthread_mutex_unlock(&turns.lock);
    return turns.body(nullptr);
}

bool can_run(context who) {
    return (who == context_caller || turns.started) && turns.awaited[who] == nullptr;
}

}  // namespace

const char *turns_thread(void) {
    return turns.thread;
}

bool turns_is_other(void) {
    return is_other;
}

void turns_set_thread(const char *name) {
    turns.thread = name;
}

int turns_start(const char *name, void *(*body)(void *)) {
    turns.names[context_other] = name;
    turns.body = body;
    pthread_t thread;
    const int error = pthread_create(&thread, nullptr, run_other, nullptr);
    if (error != 0)
        return error;
    pthread_setname_np(thread, name);
    pthread_detach(thread);
    turns.started = true;
    return 0;
}

void turns_let_other_run(void) {
    if (can_run(context_other))
        pass_turn(context_caller);
}

void turns_wait(pthread_cond_t *condition, pthread_mutex_t *lock) {
    const context self = turns.turn;
    const context other = self == context_caller ? context_other : context_caller;
    turns.awaited[self] = condition;
    if (!can_run(other)) {
        fprintf(stderr, "dvxd: the threads of the daemon wait for each other\n");
        abort();
    }
    pthread_mutex_unlock(lock);
    while (turns.awaited[self] != nullptr)
        pass_turn(self);
    pthread_mutex_lock(lock);
}

void turns_wake(const pthread_cond_t *condition) {
    for (const pthread_cond_t *&awaited : turns.awaited)
        if (awaited == condition)
            awaited = nullptr;
}
