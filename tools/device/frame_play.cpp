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

bool goes_on(playing *play) {
    play->run.interrupted = play->told != nullptr && !play->told(play->run);
    return !play->run.interrupted;
}

// Waits for the moment of the monotonic clock; false when the play ends before.
bool wait_until(playing *play, int64_t due_ns) {
    const timespec wake = {static_cast<time_t>(due_ns / second_ns),
                           static_cast<long>(due_ns % second_ns)};
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &wake, nullptr) == EINTR)
        if (!goes_on(play))
            return false;
    return true;
}

// Reports one interval as soon as there is room; false with an error or at the play's end.
bool report(playing *play, int64_t interval_us) {
    int64_t limit_ns = monotonic_ns() + int64_t{frame_patience_ms} * 1000000;
    for (;;) {
        pollfd room = {play->fd, POLLOUT, 0};
        const int64_t left_ms = (limit_ns - monotonic_ns()) / 1000000;
        const int ready = left_ms > 0 ? poll(&room, 1, static_cast<int>(left_ms)) : 0;
        if (ready > 0)
            play->run.error = device_report_interval(play->fd, interval_us);
        else if (ready == 0)
            play->run.error = -ETIMEDOUT;
        if (ready > 0 && play->run.error == 0)
            return true;
        if (ready >= 0 && play->run.error != -EAGAIN)
            return false;
        play->run.error = 0;
        if (!goes_on(play))
            return false;
    }
}

// Waits until the daemon has read what was reported.
void drain(playing *play) {
    int unread = 0;
    int unread_before = 0;
    int64_t limit_ns = 0;
    while (ioctl(play->fd, FIONREAD, &unread) == 0 && unread > 0) {
        if (unread != unread_before)
            limit_ns = monotonic_ns() + int64_t{frame_patience_ms} * 1000000;
        unread_before = unread;
        pollfd reader = {play->fd, 0, 0};
        if (poll(&reader, 1, 0) > 0) {
            play->run.error = -EPIPE;  // it has ended
            return;
        }
        if (monotonic_ns() > limit_ns) {
            play->run.error = -ETIMEDOUT;
            return;
        }
        if (!goes_on(play))
            return;
        usleep(drain_pause_us);
    }
}

}  // namespace

frame_run frame_play(const std::string &root, const std::vector<int64_t> &intervals_us,
                     double speed, const std::function<bool(const frame_run &)> &told) {
    playing play = {device_open_node(root, device_interval_node), {}, told};
    if (play.fd < 0) {
        play.run.error = play.fd;
        return play.run;
    }
    if (flock(play.fd, LOCK_EX | LOCK_NB) != 0) {  // until the end, whoever plays and ends how
        play.run.error = -EBUSY;
        close(play.fd);
        return play.run;
    }
    // A daemon that does not read must not hold us: room is waited for, with a limit.
    fcntl(play.fd, F_SETFL, fcntl(play.fd, F_GETFL) | O_NONBLOCK);
    double due_ns = static_cast<double>(monotonic_ns());
    bool going = true;
    for (size_t i = 0; going && i < intervals_us.size(); ++i) {
        const int64_t interval_us = intervals_us[i];
        going = goes_on(&play);
        if (going && speed > 0 && interval_us > 0) {
            due_ns += static_cast<double>(interval_us) * 1000.0 / speed;
            going = wait_until(&play, static_cast<int64_t>(due_ns));
        }
        going = going && report(&play, interval_us);
        if (going) {
            ++play.run.played;
            play.run.played_us += static_cast<double>(interval_us);
        }
    }
    if (play.run.error == 0 && !play.run.interrupted)
        drain(&play);
    close(play.fd);
    return play.run;
}
