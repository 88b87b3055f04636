#include "platform/socket.h"

#include <sys/socket.h>

long socket_send(int fd, const void *message, size_t size) {
    // A reader that has gone answers with an error, not with a signal.
    return send(fd, message, size, MSG_NOSIGNAL);
}
