#include "tools/device/device_run.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "device/service_words.h"
#include "device/virtual_device.h"
#include "tools/base/exit_status.h"
#include "tools/base/files.h"
#include "tools/base/words.h"
#include "tools/device/delivery.h"
#include "tools/recording/timeline.h"

namespace {

constexpr int start_timeout_ms = 5000;
constexpr int stop_timeout_ms = 2000;
constexpr int services_timeout_ms = 1000;
constexpr int pause_ms = 10;

bool services_listen() {
    return std::all_of(
        std::begin(device_services), std::end(device_services),
        [](const device_service &service) { return socket_is_taken(service.socket); });
}

// Held on the device's directory while a daemon is started on it.
struct start_lock {
    int fd;
    bool held;

    explicit start_lock(const std::string &root)
        : fd(open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
          held(fd >= 0 && flock(fd, LOCK_EX | LOCK_NB) == 0) {}
    ~start_lock() {
        if (fd >= 0)
            close(fd);
    }
    start_lock(const start_lock &) = delete;
    start_lock &operator=(const start_lock &) = delete;
};

// Why a daemon did not get up, as its log has it.
std::string explain_failed_start(const std::string &root) {
    std::string last;
    int64_t offset = 0;
    for (const std::string &line : read_lines(root + device_daemon_log, &offset)) {
        if (record_is_line(parse_daemon_line(line, 0), log_line::socket_failed))
            return another_daemon_hint;
        last = line;
    }
    return "dvxd did not start" +
           (last.empty() ? "" : "; its log, " + root + device_daemon_log + ", ends with: " + last);
}

}  // namespace

int fail_without_device(const std::string &root) {
    return refuse(root + " is not a virtual device; lay one out with dvxctl --root " +
                  shell_quoted(root) + " device create");
}

result start_device(const std::string &root, bool die_with_me, int *pid) {
    // One start at a time: a second one would take the first one's log and process for its own.
    const start_lock lock(root);
    if (!lock.held)
        return {failure::failed, "somebody else starts a daemon on " + root};
    if (device_daemon_process(root) != 0)
        return {failure::failed, "a daemon runs on " + root + " already"};
    // What the daemon takes is noted, so that it can be told and replayed; elsewhere where somebody
    // says so.
    static const bool elsewhere = getenv("DVXD_RECORD") != nullptr;
    if (!elsewhere)
        setenv("DVXD_RECORD", (std::filesystem::absolute(root).string() + device_recording).c_str(),
               1);
    device_keep_recording(root);
    *pid = device_start_daemon(root, sibling_program("dvxd"), die_with_me);
    if (*pid < 0)
        return {failure::failed, "cannot start dvxd on " + root + ": " + strerror(-*pid)};
    if (device_wait_until_started(root, *pid, start_timeout_ms) != device_started) {
        kill(*pid, SIGKILL);
        return {failure::failed, explain_failed_start(root)};
    }
    if (device_services_process(root) == 0)
        device_start_services(root, die_with_me);
    // What the daemon says before they listen would be lost. Where they never do, others serve.
    for (int waited_ms = 0; waited_ms < services_timeout_ms && !services_listen();
         waited_ms += pause_ms)
        usleep(pause_ms * 1000);
    return {};
}

result stop_device(const std::string &root) {
    const int services = device_services_process(root);
    if (services != 0)
        kill(services, SIGTERM);
    const int pid = device_daemon_process(root);
    if (pid == 0)
        return {failure::no_daemon, "no daemon runs on " + root};
    if (kill(pid, SIGTERM) != 0)
        return {failure::failed,
                "cannot stop dvxd " + std::to_string(pid) + ": " + strerror(errno)};
    for (int waited_ms = 0; device_daemon_process(root) != 0; waited_ms += pause_ms) {
        if (waited_ms > stop_timeout_ms)
            return {failure::failed, "dvxd " + std::to_string(pid) + " does not stop"};
        usleep(pause_ms * 1000);
    }
    return {};
}
