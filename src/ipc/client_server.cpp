#include "ipc/client_server.h"

#include <cutils/sockets.h>
#include <errno.h>
#include <sys/select.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <new>

#include "core/connection.h"
#include "core/log.h"
#include "core/text.h"
#include "platform/clock.h"
#include "platform/recording.h"
#include "platform/thread.h"

namespace {

constexpr int backlog = 20;

// A client that has connected may keep the others waiting this long before its message comes.
constexpr timeval receive_timeout = {0, 500000};

// Before the next try after accepting has failed, as it does for good without a free descriptor:
// the connection stays in the queue, and the wait for it returns at once.
constexpr int64_t accept_pause_us = 10000;

struct client_record {
    char name[DVX_CLIENT_NAME_SIZE];
    client_handler handler;
    std::atomic<client_record *> next;
};

constinit struct {
    std::atomic<client_record *> clients = nullptr;
    std::atomic<int> listening_fd = -1;
} server;

client_handler find_handler(const char *client) {
    const client_record *record = server.clients.load(std::memory_order_acquire);
    while (record != nullptr && strncmp(record->name, client, DVX_CLIENT_NAME_SIZE) != 0)
        record = record->next.load(std::memory_order_acquire);
    return record != nullptr ? record->handler : nullptr;
}

void receive_message(int fd, bool refuses) {
    dvx_message message = {};
    setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &receive_timeout, sizeof(receive_timeout));
    long count;
    do
        count = refuses ? recv(fd, &message, sizeof(message), 0)
                        : connection_receive(fd, &message, sizeof(message));
    while (count < 0 && errno == EINTR);  // also when the process was stopped and goes on
    if (count <= 0) {
        log_error("%s recv failed\n", "recv_data_from_client");
    } else if (count == static_cast<long>(sizeof(message))) {
        recording_begin(recorded_message, &message);
        dispatch_message(&message);
        recording_end();
    }
}

}  // namespace

void dispatch_message(const dvx_message *message) {
    const client_handler handler = find_handler(message->client);
    if (handler != nullptr) {
        handler(message->code, &message->payload);
        return;
    }
    char name[DVX_CLIENT_NAME_SIZE + 1];  // the field may be full to its last byte
    copy_text(name, message->client);
    log_error("Current Device doesn't support %s handlers.", name);
}

int register_callback(const char *client, client_handler handler) {
    client_record *added = new (std::nothrow) client_record{{}, handler, nullptr};
    if (added == nullptr) {
        log_error("Failed to allocate memory\n");
        return -EINVAL;
    }
    copy_text(added->name, client);
    std::atomic<client_record *> *link = &server.clients;
    while (client_record *record = link->load(std::memory_order_relaxed)) {
        if (strncmp(record->name, client, DVX_CLIENT_NAME_SIZE) == 0) {
            log_error("The callback of the client %s is registered already.", client);
            delete added;
            return -EINVAL;
        }
        link = &record->next;
    }
    link->store(added, std::memory_order_release);
    log_info("Callback function for client <%s> is registered\n", client);
    return 0;
}

void serve_client(int listening_fd) {
    sockaddr_un address;
    socklen_t length = sizeof(address);
    const int fd =
        accept4(listening_fd, reinterpret_cast<sockaddr *>(&address), &length, SOCK_CLOEXEC);
    if (fd < 0) {
        clock_sleep_us(accept_pause_us);
        return;
    }
    const bool refuses = connection_refuses_descriptors(fd);
    receive_message(fd, refuses);
    if (refuses)
        close(fd);
    else
        connection_close(fd);
}

void *do_listen_client_fd(void *) {
    const int fd = server.listening_fd.load(std::memory_order_acquire);
    fd_set watched;
    FD_ZERO(&watched);
    FD_SET(fd, &watched);
    for (;;) {
        fd_set ready = watched;
        if (select(FD_SETSIZE, &ready, nullptr, nullptr, nullptr) < 1) {
            log_error(" %s select error", "do_listen_client_fd");
            return nullptr;
        }
        if (FD_ISSET(fd, &ready))
            serve_client(fd);
    }
}

int server_init(void) {
    const int fd =
        socket_local_server(DVX_CLIENT_SOCKET, ANDROID_SOCKET_NAMESPACE_ABSTRACT, SOCK_STREAM);
    if (fd < 0 || fd >= FD_SETSIZE) {  // a set for select has no room beyond
        log_error("fail to create socket\n");
        if (fd >= 0)
            close(fd);
        return -EINVAL;
    }
    connection_refuse_descriptors(fd);
    server.listening_fd.store(fd, std::memory_order_release);
    if (listen(fd, backlog) != 0)
        log_error("listen error\n");
    else if (thread_start("client_listener", do_listen_client_fd) != 0)
        log_error("Unable to create pthread to listen\n");
    else
        return 0;
    close(fd);
    server.listening_fd.store(-1, std::memory_order_release);
    return -EINVAL;
}
