#include "device/virtual_device.h"

#include <cutils/properties.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "platform/host/property_files.h"
#include "tools/base/clock.h"
#include "tools/base/files.h"

namespace fs = std::filesystem;

namespace {

constexpr char started_line[] = "Halvane Start Successfully.";

// What the stand-ins of a fresh device answer, so that every feature finds what it looks for.
constexpr char default_conf[] =
    "# NAME = VALUE, read at each call; NAME.ARGUMENT = VALUE for one named thing; else 0.\n"
    "get_num_of_thermal_config_desc = 12\n"
    "init_white_list = 1\n"
    "perf_lock_use_profile = 1\n";

// A device to look at shows its events.
constexpr char default_debug[] = "1\n";

bool write_file(const std::string &path, const std::string &content) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << content;
    file.close();
    return file.good();
}

// Writes hardware.conf, and beside it what it says, by which a person's changes are known.
bool write_conf(const std::string &root, const std::string &content) {
    return write_file(root + device_conf, content) && write_file(root + device_marker, content);
}

// Empty where `root` may be replaced, else why not.
std::string check_replaceable(const fs::path &root) {
    std::error_code error;
    if (!fs::exists(root, error) || fs::exists(root.string() + device_marker, error))
        return {};
    if (!fs::is_directory(root, error))
        return root.string() + " is not a directory";
    if (!fs::is_empty(root, error))
        return root.string() + " holds something that is not a virtual device";
    return {};
}

bool create_node(const std::string &path) {
    std::error_code error;
    fs::create_directories(fs::path(path).parent_path(), error);
    return mkfifo(path.c_str(), 0644) == 0;
}

// The process whose number stands in the file, as long as it is a program of this name: the number
// may be another's by now.
int running_process(const std::string &pid_path, const std::string &name) {
    const int pid = atoi(read_file(pid_path).c_str());
    if (pid <= 0)
        return 0;
    // "PID (NAME) STATE ...": one that has ended but has not been waited for does not run.
    const std::string status = read_file("/proc/" + std::to_string(pid) + "/stat");
    const std::string running = std::to_string(pid) + " (" + name + ") ";
    return status.starts_with(running) && status[running.size()] != 'Z' ? pid : 0;
}

// Starts a program with what it says going to a file of the device.
int start_program(const std::string &root, std::vector<std::string> words, const char *output,
                  const char *pid_file, bool die_with_me) {
    const std::string path = root + output;
    const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0644);
    if (fd < 0)
        return -errno;
    std::vector<char *> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string &word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const pid_t pid = fork();
    if (pid == 0) {
        setsid();
        signal(SIGPIPE, SIG_DFL);  // whatever this program does with it
        if (die_with_me)
            prctl(PR_SET_PDEATHSIG, SIGTERM);
        const int null_fd = open("/dev/null", O_RDWR);
        dup2(null_fd, STDIN_FILENO);
        dup2(null_fd, STDOUT_FILENO);
        dup2(fd, STDERR_FILENO);
        close_range(STDERR_FILENO + 1, ~0U, 0);  // the caller's files are not this program's
        setenv("DVXD_ROOT", root.c_str(), 1);
        setenv("DVXD_LOG", "usec", 1);  // so that the timeline can tell causes from effects
        execvp(arguments[0], arguments.data());
        dprintf(STDERR_FILENO, "cannot run %s\n", arguments[0]);
        _exit(127);
    }
    const int error = errno;
    close(fd);
    if (pid < 0)
        return -error;
    write_file(root + pid_file, std::to_string(pid) + "\n");
    return pid;
}

}  // namespace

void device_set_answer(const std::string &root, const std::string &name, const std::string &value) {
    // The line that comes first counts.
    const std::string rest = read_file(root + device_conf);
    const std::string content = name + " = " + value + "\n" + rest;
    if (device_conf_is_own(root))
        write_file(root + device_conf, content);
    else
        write_conf(root, content);
}

std::string device_image_path(void) {
    return fs::path(sibling_program("")).parent_path().parent_path().string() + "/device";
}

bool device_conf_is_own(const std::string &root) {
    const std::string conf = read_file(root + device_conf);
    return device_exists(root) && conf != default_conf && conf != read_file(root + device_marker);
}

std::string device_create(const std::string &root, const std::string &image, bool keep_conf) {
    std::string refusal = check_replaceable(root);
    if (!refusal.empty())
        return refusal;
    if (device_daemon_process(root) != 0)
        return "a daemon runs on " + root;
    if (device_services_process(root) != 0)
        kill(device_services_process(root), SIGTERM);
    const bool own_conf = keep_conf && device_conf_is_own(root);
    device_keep_recording(root);
    std::error_code error;
    for (const fs::directory_entry &entry : fs::directory_iterator(root, error)) {
        const bool kept = entry.path() == root + device_previous_recording ||
                          (own_conf && entry.path() == root + device_conf);
        if (!error && !kept)
            fs::remove_all(entry, error);
    }
    if (error == std::errc::no_such_file_or_directory)
        error.clear();
    if (!error)
        fs::create_directories(root + "/properties", error);
    if (!error)
        fs::copy(image, root, fs::copy_options::recursive, error);
    if (error)
        return "cannot lay out " + root + ": " + error.message();
    if ((own_conf ? !write_file(root + device_marker, "") : !write_conf(root, default_conf)) ||
        !write_file(root + device_calls_log, "") || !write_file(root + device_messages_log, "") ||
        !write_file(root + device_daemon_log, "") || !write_file(root + device_services_log, "") ||
        !write_file(root + "/properties/ro.vendor.extension_library",
                    "/vendor/lib64/libqcopt.so\n") ||
        !write_file(root + "/properties/debug.dvxd_log.enable", default_debug) ||
        !create_node(root + device_panel_node) || !create_node(root + device_interval_node))
        return "cannot write below " + root + ": " + strerror(errno);
    return {};
}

void device_keep_recording(const std::string &root) {
    if (file_size(root + device_recording) == 0)
        return;
    std::error_code error;
    fs::rename(root + device_recording, root + device_previous_recording, error);
}

bool device_exists(const std::string &root) {
    std::error_code error;
    return fs::exists(root + device_marker, error);
}

std::string device_property(const std::string &root, const std::string &name) {
    char value[PROPERTY_VALUE_MAX];
    property_file_read((root + "/properties").c_str(), name.c_str(), value);
    return value;
}

bool device_set_property(const std::string &root, const std::string &name,
                         const std::string &value) {
    return property_file_write((root + "/properties").c_str(), name.c_str(), value.c_str()) == 0;
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

int device_start_daemon(const std::string &root, const std::string &daemon, bool die_with_me) {
    // A daemon for another processor runs under the emulator that DVX_EMULATOR names.
    std::vector<std::string> words;
    const char *emulator = getenv("DVX_EMULATOR");
    std::istringstream parts(emulator != nullptr ? emulator : "");
    for (std::string word; parts >> word;)
        words.push_back(word);
    words.push_back(daemon);
    return start_program(root, words, device_daemon_log, device_daemon_pid, die_with_me);
}

int device_start_services(const std::string &root, bool die_with_me) {
    return start_program(root, {sibling_program("dvxctl"), "--root", root, "device", "services"},
                         device_services_error, device_services_pid, die_with_me);
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
    return running_process(root + device_daemon_pid, "dvxd");
}

int device_services_process(const std::string &root) {
    return running_process(root + device_services_pid, "dvxctl");
}

std::string device_append_note(const std::string &path, std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < ' '; }, '?');
    const std::string line = std::to_string(monotonic_ns()).append(" ").append(text).append("\n");
    const int fd = open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
    if (fd >= 0) {
        [[maybe_unused]] const ssize_t written = write(fd, line.data(), line.size());
        close(fd);
    }
    return text;
}
