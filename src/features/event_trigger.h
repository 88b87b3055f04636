// The event trigger: callbacks that were queued before start-up reached its last step, registered
// there behind everybody else's. Start-up (main) only; nothing is locked.
#pragma once

#include "core/event_manager.h"

// Queues a callback. 0, or -ENOMEM.
int queue_event_trigger(event_id id, event_callback callback);

// Registers what is queued and empties the queue. Always 0.
int init_event_trigger(void);
