// What each client of the server may say, and what follows from it: events and calls into the
// features. All handlers run on the client listener thread, one message at a time; nothing is
// locked.
#pragma once

#include <cstdint>

// Registers the seven clients with the server. Always 0.
int init_fevent_monitor(void);

// The handlers: a code of the message and its payload of 256 bytes. A code that is not the client's
// is logged and has no effect.
void handler_powerhal_callback(int32_t code, const void *payload);
void handler_dgpc_callback(int32_t code, const void *payload);
void handler_tmr_callback(int32_t code, const void *payload);
void handler_mediahal_callback(int32_t code, const void *payload);
void handler_automode_callback(int32_t code, const void *payload);
void handler_lpm_callback(int32_t code, const void *payload);
void handler_vrhal_callback(int32_t code, const void *payload);
