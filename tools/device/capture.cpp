#include "tools/scenario/seen.h"

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
#include "tools/base/exit_status.h"
#include "tools/recording/logcat.h"
#include "tools/recording/recording_lines.h"
#include "tools/recording/timeline.h"
#include "tools/scenario/scenario.h"

namespace {

constexpr int pause_ms = 50;
constexpr size_t report_size = 32;
constexpr size_t line_max = size_t{1} << 20;

using line_taker = std::function<bool(const std::string &line)>;

// A message in the words that dvxctl noted when it sent it.
std::string noted_line(const std::string &text, int64_t time_ns) {
    if (text.starts_with("panel "))
        return recording_report_line(
            time_ns, recorded_panel,
            text == "panel on" ? "panel_power_on = 1\n" : "panel_power_on = 0\n");
    happening what;
    if (!read_happening(text.substr(0, text.find("  (")), &what).empty() ||
        what.kind != happening_message)
        return {};
    return recording_message_line(time_ns, what.message, what.is_text);
}

std::string entry_line(const timeline_entry &entry, int64_t offset_ns) {
    const int64_t time_ns = entry.time_ns - offset_ns;
    return entry.kind == timeline_message ? noted_line(entry.text, time_ns)
                                          : recording_entry_line(entry, time_ns);
}

std::string see_device(const std::string &root, const follow_limit &limit, const line_taker &take) {
    timeline line = timeline_open(root);
    const int64_t offset_ns = timeline_now_ns() - device_now_ns();
    for (bool over = false, last = false; !last;) {
        last = over;
        over = follow_is_over(limit);
        usleep(pause_ms * 1000);
        for (const timeline_entry &entry : timeline_read(&line)) {
            const std::string seen = entry_line(entry, offset_ns);
            if (!seen.empty() && !take(seen))
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

bool take_report(const kernel_node &node, recorded_kind kind, short revents,
                 const line_taker &take) {
    if (!kernel_node_signalled(&node, revents))
        return true;
    char report[report_size];
    kernel_node_read(&node, report, sizeof(report));
    return take(recording_report_line(device_now_ns(), kind, report));
}

bool take_log_line(phone *seen, const std::string &line, const line_taker &take) {
    logcat_line read;
    if (!logcat_take(&seen->log, line, timeline_now_ns(), &read))
        return true;
    for (const std::string &remark : seen->log.remarks)
        warn(seen->log_name + ": " + remark);
    seen->log.remarks.clear();
    timeline_entry entry = make_log_entry(read.time_ns, read.text);
    entry.thread = read.thread;
    entry.priority = read.priority;
    return entry.text.empty() || take(recording_entry_line(entry, read.time_ns - seen->offset_ns));
}

// Reads what the log has. False at its end, or where nothing more is wanted.
bool take_log(phone *seen, const line_taker &take) {
    char part[65536];
    const ssize_t count = read(seen->log_fd, part, sizeof(part));
    if (count <= 0)
        return count < 0 && errno == EINTR;
    seen->rest.append(part, static_cast<size_t>(count));
    size_t begin = 0;
    for (size_t end; (end = seen->rest.find('\n', begin)) != std::string::npos; begin = end + 1)
        if (!take_log_line(seen, seen->rest.substr(begin, end - begin), take))
            return false;
    seen->rest.erase(0, begin);
    if (seen->rest.size() > line_max)
        seen->rest.clear();  // no line of the daemon's
    return true;
}

std::string see_phone(phone *seen, const follow_limit &limit, const line_taker &take) {
    while (!follow_is_over(limit)) {
        pollfd waits[] = {kernel_node_poll(&seen->panel),
                          kernel_node_poll(&seen->interval),
                          {seen->log_fd, POLLIN, 0}};
        if (poll(waits, 3, pause_ms) < 0 && errno != EINTR)
            return strerror(errno);
        if (!take_report(seen->panel, recorded_panel, waits[0].revents, take) ||
            !take_report(seen->interval, recorded_interval, waits[1].revents, take))
            return {};
        if ((waits[2].revents & (POLLIN | POLLHUP)) != 0 && !take_log(seen, take))
            break;
    }
    return {};
}

}  // namespace

std::string see(const seen_sources &sources, const follow_limit &limit, const line_taker &take) {
    if (!sources.root.empty() && sources.log.empty())
        return see_device(sources.root, limit, take);
    phone seen;
    if (!sources.root.empty())
        setenv("DVXD_ROOT", sources.root.c_str(), 1);
    struct stat status = {};
    if (!sources.log.empty()) {
        seen.log_name = sources.log == "-" ? "standard input" : sources.log;
        seen.log_fd =
            sources.log == "-" ? STDIN_FILENO : open(sources.log.c_str(), O_RDONLY | O_CLOEXEC);
        if (seen.log_fd < 0 || fstat(seen.log_fd, &status) != 0)
            return seen.log_name + ": " + strerror(errno);
        if (S_ISDIR(status.st_mode))
            return seen.log_name + ": is a directory";
    }
    // A log that lies in a file is of some other time, and of no phone that is here.
    const bool live = sources.log.empty() || !S_ISREG(status.st_mode);
    if (live) {
        seen.offset_ns = timeline_now_ns() - device_now_ns();
        seen.panel = open_node("/sys/class/power/sben/sben_event");
        seen.interval = open_node("/sys/class/power/fbcn/fbcn_intv");
        if (seen.log_fd < 0 && seen.panel.fd < 0 && seen.interval.fd < 0)
            return "there is nothing to record: no node can be watched, and --log names no log";
    }
    std::string error = see_phone(&seen, limit, take);
    if (error.empty() && seen.log.lines > 0 && seen.log.of_daemon == 0)
        return seen.log_name + ": none of its " + std::to_string(seen.log.lines) +
               " lines is the daemon's, in logcat's form threadtime";
    return error;
}
