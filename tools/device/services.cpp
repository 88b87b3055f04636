#include "tools/device/services.h"
#include "tools/base/exit_status.h"
#include "tools/base/shown.h"

#include <errno.h>
#include <poll.h>
#include <stdio.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstddef>

#include "device/service_words.h"
#include "device/virtual_device.h"

namespace {

constexpr size_t message_max = sizeof(gbm_message);

// A listening socket of the abstract namespace, or -1 with errno set.
int listen_on(const char *name) {
    constexpr int backlog = 64;
    sockaddr_un address = {};
    const size_t length = strlen(name);
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    address.sun_family = AF_UNIX;
    memcpy(address.sun_path + 1, name, length);
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + length);
    if (fd >= 0 && bind(fd, reinterpret_cast<const sockaddr *>(&address), size) == 0 &&
        listen(fd, backlog) == 0)
        return fd;
    const int error = errno;
    close(fd);
    errno = error;
    return -1;
}

std::string receive_words(int listening_fd, const device_service &from) {
    constexpr timeval patience = {1, 0};
    char bytes[message_max];
    const int fd = accept(listening_fd, nullptr, nullptr);
    if (fd < 0)
        return "no connection";
    setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
    const ssize_t count = recv(fd, bytes, from.message_size, MSG_WAITALL);
    close(fd);
    if (count != static_cast<ssize_t>(from.message_size))
        return "a message of " + std::to_string(count) + " bytes";
    return from.describe(bytes);
}

void write_down(const std::string &root, const device_service &from, const std::string &words,
                bool print) {
    const std::string note =
        device_append_note(root + device_services_log, std::string(from.name) + "  " + words);
    if (print) {
        printf("%s\n", shown(note).c_str());
        fflush(stdout);
    }
}

}  // namespace

int serve_services(const std::string &root, bool print) {
    pollfd listening[device_service_count];
    int served = 0;
    for (size_t i = 0; i < device_service_count; ++i) {
        listening[i] = {listen_on(device_services[i].socket), POLLIN, 0};
        if (listening[i].fd >= 0)
            ++served;
        else
            warn(std::string(device_services[i].socket) + ": " + strerror(errno));
    }
    while (served > 0 && poll(listening, device_service_count, -1) >= 0)
        for (size_t i = 0; i < device_service_count; ++i)
            if (listening[i].revents != 0)
                write_down(root, device_services[i],
                           receive_words(listening[i].fd, device_services[i]), print);
    return 1;
}
