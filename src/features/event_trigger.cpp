#include "features/event_trigger.h"

#include <errno.h>

#include <new>

#include "core/log.h"

namespace {

struct pending_trigger {
    event_id id;
    event_callback callback;
    pending_trigger *next;
};

constinit pending_trigger *pending = nullptr;

}  // namespace

int queue_event_trigger(event_id id, event_callback callback) {
    pending_trigger **link = &pending;
    while (*link != nullptr)
        link = &(*link)->next;
    *link = new (std::nothrow) pending_trigger{id, callback, nullptr};
    return *link != nullptr ? 0 : -ENOMEM;
}

int init_event_trigger(void) {
    while (pending_trigger *trigger = pending) {
        register_callback_for_event(trigger->id, "EVT", trigger->callback);
        log_info("EVT %d registered", static_cast<int>(trigger->id));
        pending = trigger->next;
        delete trigger;
    }
    return 0;
}
