#include "core/connection.h"

#include <pthread.h>
#include <sched.h>
#include <semaphore.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr int so_passrights = 83;  // SO_PASSRIGHTS, which older headers lack

// Between whoever closes a connection and the thread that it goes with.
struct departure {
    sem_t copied;  // the thread has references of its own, or has failed to get them
    sem_t closed;  // by the caller
};

// A thread with a table of its own holds every descriptor that is open here, and gives its
// references back as it ends. The kernel lets no socket linger for a thread that ends; whatever
// else may take its time then takes it here.
void *hold_references(void *with) {
    departure *leaving = static_cast<departure *>(with);
    unshare(CLONE_FILES);
    sem_post(&leaving->copied);
    while (sem_wait(&leaving->closed) != 0) {
    }
    return nullptr;
}

// The thread has gone from our memory when this returns, and gives its references back after that.
void close_beside_a_thread(int fd) {
    departure leaving;
    sem_init(&leaving.copied, 0, 0);
    sem_init(&leaving.closed, 0, 0);
    pthread_t thread;
    const bool beside = pthread_create(&thread, nullptr, hold_references, &leaving) == 0;
    while (beside && sem_wait(&leaving.copied) != 0) {
    }
    close(fd);
    sem_post(&leaving.closed);
    if (beside)
        pthread_join(thread, nullptr);
    sem_destroy(&leaving.copied);
    sem_destroy(&leaving.closed);
}

}  // namespace

void connection_refuse_descriptors(int listening_fd) {
    constexpr int refused = 0;
    setsockopt(listening_fd, SOL_SOCKET, so_passrights, &refused, sizeof(refused));
}

bool connection_refuses_descriptors(int accepted_fd) {
    int passed = 1;
    socklen_t size = sizeof(passed);
    return getsockopt(accepted_fd, SOL_SOCKET, so_passrights, &passed, &size) == 0 && passed == 0;
}

long connection_receive(int fd, void *bytes, size_t size) {
    iovec part = {bytes, size};
    msghdr beside = {};
    beside.msg_iov = &part;
    beside.msg_iovlen = 1;
    // Looking takes no reference away, and what has no room beside the bytes is said to be cut.
    const ssize_t count = recvmsg(fd, &beside, MSG_PEEK);
    if (count <= 0 || (beside.msg_flags & MSG_CTRUNC) != 0)
        return count;
    return recv(fd, bytes, static_cast<size_t>(count), 0);
}

void connection_close(int fd) {
    shutdown(fd, SHUT_RD);  // nothing comes in from here on
    int unread = 0;
    if (ioctl(fd, FIONREAD, &unread) == 0 && unread > 0)
        close_beside_a_thread(fd);
    else
        close(fd);
}
