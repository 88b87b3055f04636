#include "platform/host/held_write.h"

#include <errno.h>
#include <signal.h>
#include <time.h>
#include <unistd.h>

ssize_t write_held(int fd, const void *bytes, size_t size) {
    sigset_t held;
    sigset_t before;
    sigemptyset(&held);
    sigaddset(&held, SIGPIPE);
    sigaddset(&held, SIGXFSZ);
    pthread_sigmask(SIG_BLOCK, &held, &before);
    const ssize_t count = write(fd, bytes, size);
    const int error = errno;
    const int raised = count >= 0 ? 0 : error == EPIPE ? SIGPIPE : error == EFBIG ? SIGXFSZ : 0;
    if (raised != 0 && sigismember(&before, raised) == 0) {
        constexpr timespec at_once = {0, 0};
        sigset_t taken;
        sigemptyset(&taken);
        sigaddset(&taken, raised);
        sigtimedwait(&taken, nullptr, &at_once);
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = error;
    return count;
}
