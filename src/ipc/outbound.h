// What the three clients of other services have in common: one message over a connection of its
// own, never answered. They keep no state; any thread may call, and waits as long as the service
// makes it.
#pragma once

#include <cstddef>

// Connects to a service of the abstract namespace. A descriptor, or -1 with errno set.
int outbound_connect(const char *service);

// Sends one message in one call. The count of bytes sent, or -1. The caller closes.
long outbound_send(int fd, const void *message, size_t size);
