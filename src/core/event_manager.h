// The event manager: one list of callbacks an event. Producers raise events on their own thread,
// and the callbacks run there, in the order of their registration, before the producer goes on.
//
// Lists are appended to under a lock of this module, which nothing else is taken under, and are
// walked without one: a node is linked only when it is complete, and none is ever removed. Two
// threads may walk one list at once; a feature whose callbacks share state guards it itself.
#pragma once

#include "core/events.h"

using event_callback = void (*)(void);

struct event_registration {
    event_id id;
    event_callback callback;
};

// Creates the empty lists; called once, first of all (main). 0, or -EINVAL when memory runs out.
int init_event_manager(void);

// Appends a callback under the registrant's name, a text that lives as long as the process. The
// same callback may stand in a list twice and then runs twice. 0, or -EINVAL for an id without a
// slot or when memory runs out. Any thread may call.
int register_callback_for_event(uint32_t id, const char *name, event_callback callback);

// Registers a feature's whole table in its order; a row that fails is passed over.
template <unsigned long count>
void register_callbacks(const char *name, const event_registration (&registrations)[count]) {
    for (const event_registration &row : registrations)
        register_callback_for_event(row.id, name, row.callback);
}

// Runs the event's callbacks. A callback may raise events itself; they run to their end first.
// Any thread may call; `id` is one of the catalogue's.
void notify_event(event_id id);
