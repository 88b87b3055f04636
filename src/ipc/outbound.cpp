#include "ipc/outbound.h"

#include <cutils/sockets.h>
#include <sys/socket.h>

int outbound_connect(const char *service) {
    return socket_local_client(service, ANDROID_SOCKET_NAMESPACE_ABSTRACT, SOCK_STREAM);
}

long outbound_send(int fd, const void *message, size_t size) {
    // A service that has gone answers with an error, not with a signal.
    return send(fd, message, size, MSG_NOSIGNAL);
}
