#include "tools/device/frame_play.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <time.h>
#include <unistd.h>

#include "device/virtual_device.h"
#include "tools/base/clock.h"

namespace {

constexpr int64_t second_ns = 1000000000;
constexpr int drain_pause_us = 1000;

struct playing {
    int fd;
    frame_run run;
    const std::function<bool(const frame_run &)> &told;
};

bool goes_on(playing *now) {
    now->run.interrupted = now->told != nullptr && !now->told(now->run);
    return !now->run.interrupted;
}

// Waits for the moment of the monotonic clock; false when the play ends before.
bool wait_until(playing *now, int64_t due_ns) {
    const timespec wake = {static_cast<time_t>(due_ns / second_ns),
                           static_cast<long>(due_ns % second_ns)};
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &wake, nullptr) == EINTR)
        if (!goes_on(now))
            return false;
    return true;
}

// Reports one interval as soon as there is room; false with an error or at the play's end.
bool report(playing *now, int64_t interval_us) {
    int64_t limit_ns = monotonic_ns() + int64_t{frame_patience_ms} * 1000000;
    for (;;) {
        pollfd room = {now->fd, POLLOUT, 0};
        const int64_t left_ms = (limit_ns - monotonic_ns()) / 1000000;
        const int ready = left_ms > 0 ? poll(&room, 1, static_cast<int>(left_ms)) : 0;
        if (ready > 0)
            now->run.error = device_report_interval(now->fd, interval_us);
        else if (ready == 0)
            now->run.error = -ETIMEDOUT;
        if (ready > 0 && now->run.error == 0)
            return true;
        if (ready >= 0 && now->run.error != -EAGAIN)
            return false;
        now->run.error = 0;
        if (!goes_on(now))
            return false;
    }
}

// Waits until the daemon has read what was reported.
void drain(playing *now) {
    int unread = 0;
    int unread_before = 0;
    int64_t limit_ns = 0;
    while (ioctl(now->fd, FIONREAD, &unread) == 0 && unread > 0) {
        if (unread != unread_before)
            limit_ns = monotonic_ns() + int64_t{frame_patience_ms} * 1000000;
        unread_before = unread;
        pollfd reader = {now->fd, 0, 0};
        if (poll(&reader, 1, 0) > 0) {
            now->run.error = -EPIPE;  // it has ended
            return;
        }
        if (monotonic_ns() > limit_ns) {
            now->run.error = -ETIMEDOUT;
            return;
        }
        if (!goes_on(now))
            return;
        usleep(drain_pause_us);
    }
}

}  // namespace

frame_run frame_play(const std::string &root, const std::vector<int64_t> &intervals_us,
                     double speed, const std::function<bool(const frame_run &)> &told) {
    playing now = {device_open_node(root, device_interval_node), {}, told};
    if (now.fd < 0) {
        now.run.error = now.fd;
        return now.run;
    }
    if (flock(now.fd, LOCK_EX | LOCK_NB) != 0) {  // until the end, whoever plays and ends how
        now.run.error = -EBUSY;
        close(now.fd);
        return now.run;
    }
    // A daemon that does not read must not hold us: room is waited for, with a limit.
    fcntl(now.fd, F_SETFL, fcntl(now.fd, F_GETFL) | O_NONBLOCK);
    double due_ns = static_cast<double>(monotonic_ns());
    bool going = true;
    for (size_t i = 0; going && i < intervals_us.size(); ++i) {
        const int64_t interval_us = intervals_us[i];
        going = goes_on(&now);
        if (going && speed > 0 && interval_us > 0) {
            due_ns += static_cast<double>(interval_us) * 1000.0 / speed;
            going = wait_until(&now, static_cast<int64_t>(due_ns));
        }
        going = going && report(&now, interval_us);
        if (going) {
            ++now.run.played;
            now.run.played_us += static_cast<double>(interval_us);
        }
    }
    if (now.run.error == 0 && !now.run.interrupted)
        drain(&now);
    close(now.fd);
    return now.run;
}
