#include "core/event_manager.h"

#include <errno.h>
#include <pthread.h>

#include <atomic>
#include <new>

#include "core/log.h"

namespace {

struct callback_node {
    const char *name;
    event_callback callback;
    std::atomic<callback_node *> next;
};

// A slot of the table: where an event's list begins.
struct event_slot {
    std::atomic<callback_node *> head;
};

constinit struct {
    event_slot **slots = nullptr;                             // set once, before any other thread
    pthread_mutex_t append_lock = PTHREAD_MUTEX_INITIALIZER;  // orders appends to any list
} events;

}  // namespace

int register_callback_for_event(uint32_t id, const char *name, event_callback callback) {
    if (id >= event_count) {
        log_error("There is no event for %d", static_cast<int>(id));
        return -EINVAL;
    }
    callback_node *node = new (std::nothrow) callback_node{name, callback, nullptr};
    if (node == nullptr) {
        log_error("Failed to allocated Memory");
        return -EINVAL;
    }

    pthread_mutex_lock(&events.append_lock);
    std::atomic<callback_node *> *link = &events.slots[id]->head;
    while (callback_node *tail = link->load(std::memory_order_relaxed))
        link = &tail->next;
    link->store(node, std::memory_order_release);
    pthread_mutex_unlock(&events.append_lock);

    log_debug(debug_events, "CB[%s] is registered for EV[%d]", name, static_cast<int>(id));
    return 0;
}

void notify_event(event_id id) {
    log_debug(debug_events, "EV : %d\n", static_cast<int>(id));
    const callback_node *node = events.slots[id]->head.load(std::memory_order_acquire);
    for (; node != nullptr; node = node->next.load(std::memory_order_acquire)) {
        log_debug(debug_events, "Callback for %s action start", node->name);
        node->callback();
    }
}

int init_event_manager(void) {
    events.slots = new (std::nothrow) event_slot *[event_count];
    for (uint32_t id = 0; events.slots != nullptr && id < event_count; ++id) {
        events.slots[id] = new (std::nothrow) event_slot{nullptr};
        if (events.slots[id] == nullptr) {
            log_error("Failed to allocate event state\n");
            return -EINVAL;
        }
    }
    if (events.slots == nullptr) {
        log_error("Failed to allocate event state\n");
        return -EINVAL;
    }
    return 0;
}
