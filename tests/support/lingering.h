// Descriptors that hold up whoever lets go of them last: TCP connections with unsent data that
// linger for a day.
#pragma once

#include <arpa/inet.h>
#include <fcntl.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <vector>

// Needs a network namespace of its own, whose loopback it takes up.
inline int lingering_connection() {
    static constexpr int small = 4096;
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    sockaddr *const place = reinterpret_cast<sockaddr *>(&address);
    socklen_t length = sizeof(address);
    static const int listening_fd = [] {
        const int fd = socket(AF_INET, SOCK_STREAM, 0);
        ifreq loopback = {};
        strcpy(loopback.ifr_name, "lo");
        loopback.ifr_flags = IFF_UP;
        ioctl(fd, SIOCSIFFLAGS, &loopback);
        setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &small, sizeof(small));
        listen(fd, 4096);
        return fd;
    }();
    getsockname(listening_fd, place, &length);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
    constexpr linger a_day = {1, 86400};
    setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &small, sizeof(small));
    connect(fd, place, length);
    static const std::vector<char> bytes(1 << 16);
    // Until nothing more fits, though the other side has had time to take something.
    for (int full = 0; full < 5;)
        if (send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL) > 0)
            full = 0;
        else if (++full < 5)
            usleep(1000);
    fcntl(fd, F_SETFL, 0);  // a socket that does not wait does not linger
    setsockopt(fd, SOL_SOCKET, SO_LINGER, &a_day, sizeof(a_day));
    return fd;
}

// Sends bytes with a lingering connection beside them, and leaves the sender's own reference to it
// to the caller, who may be the last one by now. The count, or -1: then nobody else has one, and it
// does not linger.
inline long send_lingering(int fd, const void *bytes, size_t size, int beside) {
    iovec part = {const_cast<void *>(bytes), size};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
    msghdr message = {};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof(control);
    cmsghdr *const rights = CMSG_FIRSTHDR(&message);
    rights->cmsg_level = SOL_SOCKET;
    rights->cmsg_type = SCM_RIGHTS;
    rights->cmsg_len = CMSG_LEN(sizeof(int));
    memcpy(CMSG_DATA(rights), &beside, sizeof(beside));
    const long count = sendmsg(fd, &message, MSG_NOSIGNAL);
    constexpr linger none = {1, 0};
    if (count < 0)
        setsockopt(beside, SOL_SOCKET, SO_LINGER, &none, sizeof(none));
    return count;
}
