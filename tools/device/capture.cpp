#include "tools/device/capture.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "device/virtual_device.h"
#include "platform/device_root.h"
#include "platform/kernel_node.h"
#include "tools/base/clock.h"
#include "tools/base/exit_status.h"
#include "tools/recording/happening_words.h"
#include "tools/recording/logcat.h"
#include "tools/recording/recording.h"
#include "tools/recording/timeline.h"

namespace {

constexpr int pause_ms = 50;
constexpr size_t report_size = 32;
constexpr size_t line_max = size_t{1} << 20;

using line_taker = std::function<bool(const std::string &line)>;

// The line of a message or a panel report, in the words that dvxctl noted when it sent it; empty
// where it is neither.
std::string noted_line(const std::string &text, int64_t time_ns) {
    happening noted;
    if (!read_happening(text.substr(0, text.find("  (")), &noted).empty() ||
        (noted.kind != happening_kind::message && noted.kind != happening_kind::panel))
        return {};
    noted.time_ns = time_ns;
    return recording_line_of(noted);
}

result capture_device(const std::string &root, const follow_limit &limit, const line_taker &take) {
    timeline line = timeline_open(root);
    const int64_t offset_ns = wall_ns() - monotonic_ns();
    for (bool over = false, last = false; !last;) {
        last = over;
        over = follow_is_over(limit);
        usleep(pause_ms * 1000);
        for (const record &came : timeline_read(&line)) {
            const int64_t time_ns = came.time_ns - offset_ns;
            const std::string captured = came.kind == record_kind::message
                                             ? noted_line(came.text, time_ns)
                                             : recording_line_of(came, time_ns);
            if (!captured.empty() && !take(captured))
                return {};
        }
    }
    return {};
}

// ---- a phone

struct phone {
    kernel_node panel = {-1, -1, true};
    kernel_node interval = {-1, -1, true};
    int log_fd = -1;
    std::string log_name;
    std::string rest;       // of the log, a line that has not ended yet
    int64_t offset_ns = 0;  // of the wall clock before the recording's
    logcat_log log;
};

// Opens a node beside its other readers. A pipe has one alone, the daemon.
kernel_node open_node(const char *path) {
    constexpr kernel_node none = {-1, -1, true};
    char host_path[PATH_MAX];
    struct stat status;
    if (device_path(host_path, sizeof(host_path), path) != 0 || stat(host_path, &status) != 0) {
        warn(std::string(path) + " cannot be watched: " + strerror(errno));
        return none;
    }
    if (S_ISFIFO(status.st_mode)) {
        warn(std::string(path) + " has one reader, the daemon; its reports are not seen");
        return none;
    }
    kernel_node node = kernel_node_open(path);
    char before[report_size];
    if (node.fd >= 0)
        kernel_node_read(&node, before, sizeof(before));  // only what comes from now on counts
    return node;
}

bool take_report(const kernel_node &node, happening_kind kind, short revents,
                 const line_taker &take) {
    if (!kernel_node_signalled(&node, revents))
        return true;
    char report[report_size];
    kernel_node_read(&node, report, sizeof(report));
    happening reported;
    reported.kind = kind;
    reported.time_ns = monotonic_ns();
    reported.value = report;
    int interval_us = 0;
    if (kind == happening_kind::interval && sscanf(report, "%d", &interval_us) == 1)
        reported.interval_us = interval_us;
    return take(recording_line_of(reported));
}

bool take_log_line(phone *watched, const std::string &line, const line_taker &take) {
    logcat_line read;
    if (!logcat_take(&watched->log, line, wall_ns(), &read))
        return true;
    warn_of(watched->log_name, watched->log.remarks);
    watched->log.remarks.clear();
    const record came = logcat_record(read);
    return came.text.empty() || take(recording_line_of(came, read.time_ns - watched->offset_ns));
}

// Reads what the log has. False at its end, or where nothing more is wanted.
bool take_log(phone *watched, const line_taker &take) {
    char part[65536];
    const ssize_t count = read(watched->log_fd, part, sizeof(part));
    if (count <= 0)
        return count < 0 && errno == EINTR;
    watched->rest.append(part, static_cast<size_t>(count));
    size_t begin = 0;
    for (size_t end; (end = watched->rest.find('\n', begin)) != std::string::npos; begin = end + 1)
        if (!take_log_line(watched, watched->rest.substr(begin, end - begin), take))
            return false;
    watched->rest.erase(0, begin);
    if (watched->rest.size() > line_max)
        watched->rest.clear();  // no line of the daemon's
    return true;
}

result capture_phone(phone *watched, const follow_limit &limit, const line_taker &take) {
    while (!follow_is_over(limit)) {
        pollfd waits[] = {kernel_node_poll(&watched->panel),
                          kernel_node_poll(&watched->interval),
                          {watched->log_fd, POLLIN, 0}};
        if (poll(waits, 3, pause_ms) < 0 && errno != EINTR)
            return {failure::input, strerror(errno)};
        if (!take_report(watched->panel, happening_kind::panel, waits[0].revents, take) ||
            !take_report(watched->interval, happening_kind::interval, waits[1].revents, take))
            return {};
        if ((waits[2].revents & (POLLIN | POLLHUP)) != 0 && !take_log(watched, take))
            break;
    }
    return {};
}

}  // namespace

result capture(const capture_sources &sources, const follow_limit &limit, const line_taker &take) {
    if (!sources.root.empty() && sources.log.empty())
        return capture_device(sources.root, limit, take);
    phone watched;
    if (!sources.root.empty())
        setenv("DVXD_ROOT", sources.root.c_str(), 1);
    struct stat status = {};
    if (!sources.log.empty()) {
        watched.log_name = sources.log == "-" ? "standard input" : sources.log;
        watched.log_fd =
            sources.log == "-" ? STDIN_FILENO : open(sources.log.c_str(), O_RDONLY | O_CLOEXEC);
        if (watched.log_fd < 0 || fstat(watched.log_fd, &status) != 0)
            return {failure::input, watched.log_name + ": " + strerror(errno)};
        if (S_ISDIR(status.st_mode))
            return {failure::input, watched.log_name + ": is a directory"};
    }
    // A log that lies in a file is of some other time, and of no phone that is here.
    const bool live = sources.log.empty() || !S_ISREG(status.st_mode);
    if (live) {
        watched.offset_ns = wall_ns() - monotonic_ns();
        watched.panel = open_node(device_panel_node);
        watched.interval = open_node(device_interval_node);
        if (watched.log_fd < 0 && watched.panel.fd < 0 && watched.interval.fd < 0)
            return {failure::input,
                    "there is nothing to record: no node can be watched, and --log names no log"};
    }
    result captured = capture_phone(&watched, limit, take);
    if (captured.kind == failure::none && watched.log.lines > 0 && watched.log.of_daemon == 0)
        return {failure::input, watched.log_name + ": none of its " +
                                    std::to_string(watched.log.lines) +
                                    " lines is the daemon's, in logcat's form threadtime"};
    return captured;
}
