#include "core/event_manager.h"

#include <assert.h>
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
    // Published whole: the thermal engine's check thread runs before main creates the lists.
    std::atomic<event_slot **> slots = nullptr;
    pthread_mutex_t append_lock = PTHREAD_MUTEX_INITIALIZER;  // orders appends to any list
} events;

event_slot *find_slot(uint32_t id) {
    event_slot **slots = events.slots.load(std::memory_order_acquire);
    return slots != nullptr ? slots[id] : nullptr;
}

}  // namespace

int register_callback_for_event(uint32_t id, const char *name, event_callback callback) {
    event_slot *slot = id < event_count ? find_slot(id) : nullptr;
    if (slot == nullptr) {
        log_error("There is no event for %d", static_cast<int>(id));
        return -EINVAL;
    }
    callback_node *node = new (std::nothrow) callback_node{name, callback, nullptr};
    if (node == nullptr) {
        log_error("Failed to allocated Memory");
        return -EINVAL;
    }

    pthread_mutex_lock(&events.append_lock);
    std::atomic<callback_node *> *link = &slot->head;
    while (callback_node *tail = link->load(std::memory_order_relaxed))
        link = &tail->next;
    link->store(node, std::memory_order_release);
    pthread_mutex_unlock(&events.append_lock);

    log_debug(debug_events, "CB[%s] is registered for EV[%d]", name, static_cast<int>(id));
    return 0;
}

void notify_event(event_id id) {
    assert(id < event_count);
    log_debug(debug_events, "EV : %d\n", static_cast<int>(id));
    const event_slot *slot = find_slot(id);
    if (slot == nullptr)
        return;
    const callback_node *node = slot->head.load(std::memory_order_acquire);
    for (; node != nullptr; node = node->next.load(std::memory_order_acquire)) {
        log_debug(debug_events, "Callback for %s action start", node->name);
        node->callback();
    }
}

int init_event_manager(void) {
    static event_slot **slots = nullptr;  // kept where it is found, also when it stays incomplete
    slots = new (std::nothrow) event_slot *[event_count] {};
    bool complete = slots != nullptr;
    for (uint32_t id = 0; complete && id < event_count; ++id) {
        slots[id] = new (std::nothrow) event_slot{nullptr};
        complete = slots[id] != nullptr;
    }
    if (!complete) {
        log_error("Failed to allocate event state\n");
        return -EINVAL;
    }
    events.slots.store(slots, std::memory_order_release);
    return 0;
}
