// What the three clients of other services have in common: one message over a connection of its
// own, never answered, and a limit to the patience with a service that hangs.
//
// Any thread may call. A service's record is one word beside its name; nothing is locked.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

struct outbound_service {
    const char *socket;               // its name in the abstract namespace
    std::atomic<int64_t> shunned_ms;  // until this time of the monotonic clock it counts as down
};

// Connects to a service. A descriptor, or -1 with errno set. A service whose queue stays full is
// waited for a second, then given up with EAGAIN, and for the next five seconds at once.
int outbound_connect(outbound_service *service);

// Sends one message in one call. The count of bytes sent, or -1. The caller closes.
long outbound_send(int fd, const void *message, size_t size);
