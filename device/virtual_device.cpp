#include "device/virtual_device.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

namespace {

constexpr char marker[] = ".dvx-device";
constexpr char started_line[] = "Halvane Start Successfully.";

// What the stand-ins of a fresh device answer, so that every feature finds what it looks for.
constexpr char default_conf[] =
    "# NAME = VALUE, read at each call; NAME.ARGUMENT = VALUE for one named thing; else 0.\n"
    "get_num_of_thermal_config_desc = 12\n"
    "init_white_list = 1\n"
    "perf_lock_use_profile = 1\n";

// A device to look at shows its events.
constexpr char default_debug[] = "1\n";

std::string read_file(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

bool write_file(const std::string &path, const std::string &content) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << content;
    return file.good();
}

std::string directory_of_program() {
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error).parent_path().string();
}

// Empty where `root` may be replaced, else why not.
std::string check_replaceable(const fs::path &root) {
    std::error_code error;
    if (!fs::exists(root, error) || fs::exists(root / marker, error))
        return {};
    if (!fs::is_directory(root, error))
        return root.string() + " is not a directory";
    if (!fs::is_empty(root, error))
        return root.string() + " holds something that is not a virtual device";
    return {};
}

bool create_node(const std::string &path) {
    fs::create_directories(fs::path(path).parent_path());
    return mkfifo(path.c_str(), 0644) == 0;
}

}  // namespace

std::string sibling_program(const std::string &name) {
    return directory_of_program() + "/" + name;
}

std::string device_image_path(void) {
    return fs::path(directory_of_program()).parent_path().string() + "/device";
}

std::string device_create(const std::string &root, const std::string &image) {
    const std::string refusal = check_replaceable(root);
    if (!refusal.empty())
        return refusal;
    if (device_daemon_process(root) != 0)
        return "a daemon runs on " + root;
    std::error_code error;
    fs::remove_all(root, error);
    fs::create_directories(root + "/properties", error);
    fs::copy(image, root, fs::copy_options::recursive, error);
    if (error)
        return "cannot lay out " + root + ": " + error.message();
    if (!write_file(root + "/" + marker, "") || !write_file(root + device_calls_log, "") ||
        !write_file(root + device_messages_log, "") || !write_file(root + device_daemon_log, "") ||
        !write_file(root + device_conf, default_conf) ||
        !write_file(root + "/properties/ro.vendor.extension_library",
                    "/vendor/lib64/libqcopt.so\n") ||
        !write_file(root + "/properties/debug.dvxd_log.enable", default_debug) ||
        !create_node(root + device_panel_node) || !create_node(root + device_interval_node))
        return "cannot write below " + root;
    return {};
}

bool device_hide_symbol(const std::string &library, const std::string &symbol) {
    // The loader compares names: one with another first letter is never found.
    std::string content = read_file(library);
    const std::string name = '\0' + symbol + '\0';
    bool found = false;
    for (size_t at = content.find(name); at != std::string::npos; at = content.find(name, at + 1)) {
        content[at + 1] = '~';
        found = true;
    }
    if (!found)
        return false;
    // A new file, as the old one may be mapped by a daemon that runs.
    std::error_code error;
    fs::remove(library, error);
    return write_file(library, content);
}

int device_open_node(const std::string &root, const char *node) {
    const int fd = open((root + node).c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return -errno;
    // Packet mode keeps reports apart; it can only be had after opening.
    fcntl(fd, F_SETFL, O_DIRECT);
    return fd;
}

int device_report_panel(const std::string &root, bool on) {
    const int fd = device_open_node(root, device_panel_node);
    if (fd < 0)
        return fd;
    const std::string report = std::string("panel_power_on = ") + (on ? "1" : "0") + "\n";
    const ssize_t written = write(fd, report.data(), report.size());
    const int error = errno;
    close(fd);
    return written < 0 ? -error : 0;
}

int device_report_interval(int node_fd, int64_t interval_us) {
    const std::string report = std::to_string(interval_us) + "\n";
    return write(node_fd, report.data(), report.size()) < 0 ? -errno : 0;
}

int device_start_daemon(const std::string &root, const std::string &daemon) {
    const std::string log = root + device_daemon_log;
    const int log_fd = open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0644);
    if (log_fd < 0)
        return -errno;
    const pid_t pid = fork();
    if (pid == 0) {
        setsid();
        const int null_fd = open("/dev/null", O_RDWR);
        dup2(null_fd, STDIN_FILENO);
        dup2(null_fd, STDOUT_FILENO);
        dup2(log_fd, STDERR_FILENO);
        setenv("DVXD_ROOT", root.c_str(), 1);
        execl(daemon.c_str(), daemon.c_str(), static_cast<char *>(nullptr));
        dprintf(STDERR_FILENO, "cannot run %s\n", daemon.c_str());
        _exit(127);
    }
    const int error = errno;
    close(log_fd);
    if (pid < 0)
        return -error;
    write_file(root + device_daemon_pid, std::to_string(pid) + "\n");
    return pid;
}

device_start_result device_wait_until_started(const std::string &root, int pid, int timeout_ms) {
    constexpr timespec pause = {0, 5000000};
    constexpr int pause_ms = 5;
    for (int waited_ms = 0; waited_ms < timeout_ms; waited_ms += pause_ms) {
        if (read_file(root + device_daemon_log).find(started_line) != std::string::npos)
            return device_started;
        int status;
        if (waitpid(pid, &status, WNOHANG) == pid || kill(pid, 0) != 0)
            return device_start_failed;
        nanosleep(&pause, nullptr);
    }
    return device_start_timeout;
}

int device_daemon_process(const std::string &root) {
    const int pid = atoi(read_file(root + device_daemon_pid).c_str());
    if (pid <= 0 || kill(pid, 0) != 0)
        return 0;
    // The number may be another process's by now.
    const std::string name = read_file("/proc/" + std::to_string(pid) + "/comm");
    return name == "dvxd\n" ? pid : 0;
}

std::vector<std::string> device_read_lines(const std::string &path, int64_t *offset) {
    std::vector<std::string> lines;
    std::ifstream file(path, std::ios::binary);
    file.seekg(*offset);
    const std::string content{std::istreambuf_iterator<char>(file),
                              std::istreambuf_iterator<char>()};
    size_t start = 0;
    for (size_t end = content.find('\n'); end != std::string::npos;
         end = content.find('\n', start)) {
        lines.push_back(content.substr(start, end - start));
        start = end + 1;
    }
    *offset += static_cast<int64_t>(start);
    return lines;
}
