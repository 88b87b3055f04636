// The property worker: publishes in "sys.zuv.vtmode" whether a game ("1") or a navigation app ("2")
// is in front; a game has precedence.
//
// Callbacks run on the client listener and on the kernel event monitor; this module's lock makes
// one step of each change and its writing, and nothing else is taken under it.
#pragma once

// Publishes the initial value and registers the callbacks. Always 0.
int init_property_worker(void);
