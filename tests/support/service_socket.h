// A service that the daemon talks to, as a test stands in for it.
#pragma once

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstddef>
#include <string>

struct service_socket {
    int fd;

    // In the abstract namespace.
    explicit service_socket(const std::string &name)
        : fd(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0)) {
        sockaddr_un address = {AF_UNIX, ""};
        name.copy(address.sun_path + 1, sizeof(address.sun_path) - 1);
        bind(fd, reinterpret_cast<const sockaddr *>(&address),
             static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size()));
        listen(fd, 64);
    }
    ~service_socket() { close(fd); }

    // The bytes of the next connection; empty when nobody has connected.
    std::string take() const {
        char bytes[1024];
        const int connection = accept(fd, nullptr, nullptr);
        if (connection < 0)
            return {};
        const ssize_t count = recv(connection, bytes, sizeof(bytes), MSG_WAITALL);
        close(connection);
        return {bytes, static_cast<size_t>(count > 0 ? count : 0)};
    }

    // The next message as a record; zeroed when there is none of that size.
    template <typename message>
    message take_message() const {
        message received = {};
        const std::string bytes = take();
        if (bytes.size() == sizeof(received))
            bytes.copy(reinterpret_cast<char *>(&received), sizeof(received));
        return received;
    }
};
