// The client server: platform services connect to the local socket "dvx-client", send one message
// each, and the handler registered for the sender's name runs with it on the listener thread. One
// connection is served at a time; it is closed when the handler has returned.
//
// Start-up (main) fills the registry, each record complete before it is linked; the listener thread
// only reads it. Nothing is locked.
#pragma once

#include <cstdint>

#include "client/dvx_client.h"

// `payload` is the message's, 256 bytes that need not hold a NUL; it is the handler's until it
// returns.
using client_handler = void (*)(int32_t code, const void *payload);

// Opens the socket and starts the listener thread. 0, or -EINVAL with a log line.
int server_init(void);

// Registers the handler of a client. 0, or -EINVAL with a log line when the name (at most 19
// characters) is taken or memory runs out. Start-up only.
int register_callback(const char *client, client_handler handler);

// Runs the handler registered for the message's client, or says that there is none.
void dispatch_message(const struct dvx_message *message);

// Accepts one connection, receives and dispatches its message and closes it; the step of the
// listener thread. A connection that cannot be accepted costs a pause of 10 ms.
void serve_client(int listening_fd);

// The listener thread; ends only when waiting for clients fails.
void *do_listen_client_fd(void *);
