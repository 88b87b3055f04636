#include "tools/device/follow.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <string.h>
#include <unistd.h>

#include <filesystem>

#include "device/virtual_device.h"
#include "tools/base/clock.h"
#include "tools/base/processes.h"
#include "tools/device/daemon_process.h"

namespace {

constexpr useconds_t pause_us = 50000;

volatile sig_atomic_t interrupted = 0;

void note_interrupt(int) {
    interrupted = 1;
}

}  // namespace

void follow_begin() {
    struct sigaction action = {};
    action.sa_handler = note_interrupt;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGHUP, &action, nullptr);  // the terminal goes, what was recorded stays
}

bool follow_is_over(const follow_limit &limit) {
    return interrupted != 0 || monotonic_ns() >= limit.end_ns ||
           (limit.daemon != 0 && kill(limit.daemon, 0) != 0);
}

std::string follow_file(const std::string &path, const follow_limit &limit,
                        const std::function<bool(const std::string &line)> &take,
                        const std::function<void()> &idle) {
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return path + ": " + strerror(errno);
    std::string rest;
    bool wanted = true;
    // One more look after the end, as the last lines may be younger than the last look.
    for (bool over = false, last = false; wanted && !last;) {
        last = over;
        over = follow_is_over(limit);
        char part[65536];
        ssize_t count;
        while (wanted && (count = read(fd, part, sizeof(part))) > 0) {
            rest.append(part, static_cast<size_t>(count));
            size_t begin = 0;
            for (size_t end; wanted && (end = rest.find('\n', begin)) != std::string::npos;
                 begin = end + 1)
                wanted = take(rest.substr(begin, end - begin));
            rest.erase(0, begin);
        }
        idle();
        if (!over)
            usleep(pause_us);
    }
    close(fd);
    return {};
}

std::string follow_notes_of(const std::string &root, int *daemon) {
    *daemon = daemon_process(root);
    const std::string notes = *daemon != 0 ? process_environment(*daemon, "DVXD_RECORD") : "";
    std::error_code error;
    return std::filesystem::is_regular_file(notes, error) ? notes : "";
}
