#include "ipc/outbound/outbound.h"

#include <cutils/sockets.h>
#include <errno.h>
#include <sys/socket.h>

#include <algorithm>

#include "core/timer.h"
#include "platform/clock.h"
#include "platform/socket.h"

namespace {

constexpr int64_t patience_ms = 1000;
constexpr int64_t shun_ms = 5000;
constexpr int64_t pause_max_ms = 50;

}  // namespace

int outbound_connect(outbound_service *service) {
    errno = EAGAIN;
    if (get_current_monotonic_ms() < service->shunned_ms.load(std::memory_order_relaxed))
        return -1;
    // The platform's connect knows no limit, so it is asked not to wait at all. The pauses grow
    // from two milliseconds, as a queue that is full for a moment is the usual case; they are
    // counted as well as timed, so that they end where time stands still.
    const int64_t deadline_ms = get_current_monotonic_ms() + patience_ms;
    int64_t pause_ms = 1;
    for (int64_t waited_ms = 0;; waited_ms += pause_ms) {
        const int fd = socket_local_client(service->socket, ANDROID_SOCKET_NAMESPACE_ABSTRACT,
                                           SOCK_STREAM | SOCK_NONBLOCK);
        if (fd >= 0 || errno != EAGAIN)
            return fd;
        const int64_t left_ms =
            std::min(patience_ms - waited_ms, deadline_ms - get_current_monotonic_ms());
        if (left_ms <= 0)
            break;
        pause_ms = std::min({2 * pause_ms, pause_max_ms, left_ms});
        clock_sleep_us(pause_ms * 1000);
    }
    service->shunned_ms.store(get_current_monotonic_ms() + shun_ms, std::memory_order_relaxed);
    errno = EAGAIN;
    return -1;
}

long outbound_send(int fd, const void *message, size_t size) {
    return socket_send(fd, message, size);
}
