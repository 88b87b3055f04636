#include "tools/device/watch.h"

#include <errno.h>
#include <poll.h>
#include <stdio.h>
#include <string.h>
#include <sys/inotify.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "device/hardware_conf.h"
#include "device/virtual_device.h"
#include "tools/base/clock.h"
#include "tools/base/exit_status.h"
#include "tools/device/device_run.h"
#include "tools/device/timeline_printer.h"
#include "tools/recording/timeline.h"

namespace {

constexpr int hold_back_ms = timeline_hold_back_ns / 1000000;

// What wakes a watcher: a change below the device's root, the end of its daemon, of its reader.
struct watcher {
    int changes_fd;
    int root_watch;
    int daemon;     // process id; 0: none runs
    int daemon_fd;  // readable once it has ended; -1: none
    bool gone;      // the device is no more, or another one lies there
};

void note(timeline_printer *printer, const std::string &text) {
    record said;
    said.kind = record_kind::note;
    said.time_ns = wall_ns();
    said.text = text;
    timeline_print(printer, said);
}

// Says what the file of answers has that no library can use.
void note_conf(timeline_printer *printer) {
    for (const std::string &wrong : device_check_conf(printer->line->root))
        note(printer, wrong);
}

// Notices that a daemon has ended, or that another one runs.
void follow_daemon(watcher *wake, timeline_printer *printer) {
    const int running = device_daemon_process(printer->line->root);
    if (running == wake->daemon)
        return;
    if (wake->daemon != 0)
        note(printer, "dvxd " + std::to_string(wake->daemon) + " has ended");
    if (wake->daemon_fd >= 0)
        close(wake->daemon_fd);
    wake->daemon = running;
    wake->daemon_fd = running != 0 ? static_cast<int>(syscall(SYS_pidfd_open, running, 0)) : -1;
    if (running != 0)
        note(printer, "dvxd " + std::to_string(running) + " runs");
    printer->threads.clear();
}

// Takes the notices of what has changed. Whether hardware.conf was among it.
bool take_changes(watcher *wake) {
    alignas(inotify_event) char notices[16384];
    bool conf = false;
    for (ssize_t size; (size = read(wake->changes_fd, notices, sizeof(notices))) > 0;)
        for (ssize_t at = 0; at < size;) {
            const auto *event = reinterpret_cast<const inotify_event *>(notices + at);
            wake->gone |= event->wd == wake->root_watch &&
                          (event->mask & (IN_DELETE_SELF | IN_MOVE_SELF)) != 0;
            wake->gone |= event->len > 0 && (event->mask & IN_DELETE) != 0 &&
                          strcmp(event->name, device_marker + 1) == 0;
            conf |= event->len > 0 && strcmp(event->name, device_conf + 1) == 0;
            at += static_cast<ssize_t>(sizeof(*event) + event->len);
        }
    return conf;
}

bool watch_folders(watcher *wake, const std::string &root) {
    constexpr uint32_t changes =
        IN_MODIFY | IN_CREATE | IN_MOVED_TO | IN_DELETE | IN_DELETE_SELF | IN_MOVE_SELF;
    wake->changes_fd = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
    wake->root_watch = inotify_add_watch(wake->changes_fd, root.c_str(), changes);
    return wake->root_watch >= 0 &&
           inotify_add_watch(wake->changes_fd, (root + "/properties").c_str(), changes) >= 0;
}

}  // namespace

int watch_device(const std::string &root, bool brief, bool why) {
    watcher wake = {-1, -1, 0, -1, false};
    if (!device_exists(root))
        return fail_without_device(root);
    if (!watch_folders(&wake, root))
        return fail("cannot watch " + root + ": " + strerror(errno));
    timeline line = timeline_open(root);
    timeline_printer printer = make_timeline_printer(&line, brief, why);
    note_conf(&printer);
    int error = 0;
    if (device_daemon_process(root) == 0)
        note(&printer, "no daemon runs");
    while (error == 0 && !wake.gone) {
        follow_daemon(&wake, &printer);
        for (const record &came : timeline_read(&line))
            timeline_print(&printer, came);
        error = timeline_flush(&printer);
        if (error != 0)
            break;
        // What is held back is due soon; else nothing is until something changes.
        pollfd waits[] = {
            {wake.changes_fd, POLLIN, 0}, {wake.daemon_fd, POLLIN, 0}, {STDOUT_FILENO, 0, 0}};
        poll(waits, 3, line.held_back.empty() ? -1 : hold_back_ms);
        if (take_changes(&wake))
            note_conf(&printer);
        // A directory that a daemon still has open says nothing of its own end.
        wake.gone |= !device_exists(root);
        if ((waits[2].revents & POLLERR) != 0)
            error = EPIPE;
    }
    if (error == EPIPE)
        return 0;
    clearerr(stdout);  // said here, once
    if (error != 0)
        warn(std::string("cannot write: ") + strerror(error));
    else
        warn("the device at " + root + " is gone");
    return exit_found;
}
