// Connections whose peer may send descriptors beside its bytes. Dropping the last reference to one
// can take as long as the peer likes: a TCP socket with unsent data lingers for a day and more, on
// the thread that drops it. So nobody here lets go of a descriptor from outside on the thread that
// serves.
//
// Any thread may call; nothing is locked, and a connection belongs to its caller.
#pragma once

#include <cstddef>

// Has the kernel refuse descriptors to whoever connects to a listening socket from now on: sending
// one fails. Kernels before 6.16 cannot.
void connection_refuse_descriptors(int listening_fd);

// Whether the kernel has done so for a connection from its beginning: it may be received from and
// closed as any other then, which spares three calls to the system.
bool connection_refuses_descriptors(int accepted_fd);

// Receives once, as recv does without flags, but leaves the bytes that carry descriptors where they
// are, for connection_close. The count of bytes, 0 at the end, or -1 with errno set.
long connection_receive(int fd, void *bytes, size_t size);

// Closes a connection. What has not been received of it goes with a thread of its own, which the
// caller does not wait for.
void connection_close(int fd);
