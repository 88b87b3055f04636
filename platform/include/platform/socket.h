// Sending over a socket of the platform.
#pragma once

#include <cstddef>

// Sends one message in one call. The count of bytes sent, or -1 with errno set; a reader that has
// gone raises no signal. Any thread may call.
long socket_send(int fd, const void *message, size_t size);
