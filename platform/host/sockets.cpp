#include <cutils/sockets.h>
#include <errno.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstddef>

#include "platform/host/recording.h"
#include "platform/socket.h"

namespace {

constexpr int default_backlog = 4;

using attach_operation = int (*)(int fd, const sockaddr *address, socklen_t length);

void close_keeping_errno(int fd) {
    const int saved_errno = errno;
    close(fd);
    errno = saved_errno;
}

// A socket attached by bind or connect to the abstract address "\0NAME", without a NUL behind it.
int open_attached(const char *name, int namespace_id, int type, attach_operation attach) {
    sockaddr_un address = {};
    const size_t length = strlen(name);
    if (namespace_id != ANDROID_SOCKET_NAMESPACE_ABSTRACT || length >= sizeof(address.sun_path)) {
        errno = EINVAL;
        return -1;
    }
    address.sun_family = AF_UNIX;
    memcpy(address.sun_path + 1, name, length);
    const int fd = socket(AF_UNIX, type | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return -1;
    const socklen_t address_length =
        static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + length);
    if (attach(fd, reinterpret_cast<const sockaddr *>(&address), address_length) == 0)
        return fd;
    close_keeping_errno(fd);
    return -1;
}

}  // namespace

extern "C" int socket_local_server(const char *name, int namespace_id, int type) {
    const int fd = open_attached(name, namespace_id, type, bind);
    if (fd < 0 || type != SOCK_STREAM || listen(fd, default_backlog) == 0)
        return fd;
    close_keeping_errno(fd);
    return -1;
}

extern "C" int socket_local_client(const char *name, int namespace_id, int type) {
    const int fd = open_attached(name, namespace_id, type, connect);
    recording_note_connect(name, fd < 0 ? errno : 0);
    return fd;
}

long socket_send(int fd, const void *message, size_t size) {
    // A reader that has gone answers with an error, not with a signal.
    const long result = send(fd, message, size, MSG_NOSIGNAL);
    const int saved_errno = errno;
    recording_note_message(message, size);
    recording_note_sent(result, size);
    errno = saved_errno;
    return result;
}
