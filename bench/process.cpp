#include "bench/process.h"

#include <signal.h>
#include <stdio.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <vector>

#include "bench/setup.h"
#include "client/dvx_client.h"
#include "device/virtual_device.h"
#include "platform/clock.h"
#include "tools/base/files.h"

namespace {

namespace fs = std::filesystem;

constexpr int load_messages = 100000;
constexpr int load_intervals = 1000000;
constexpr int wakeup_seconds = 10;

// Starts a daemon and waits for its start line.
int start_measured(double *ms) {
    int ends[2];
    if (pipe(ends) != 0)
        return -1;
    const int64_t before = clock_monotonic_ns();
    const int pid = fork();
    if (pid == 0) {
        dup2(ends[1], STDERR_FILENO);
        close(ends[0]);
        close(ends[1]);
        execl(sibling_program("dvxd").c_str(), "dvxd", static_cast<char *>(nullptr));
        _exit(127);
    }
    close(ends[1]);
    std::string seen;
    char text[4096];
    ssize_t count;
    while (seen.find("Halvane Start Successfully.") == std::string::npos &&
           (count = read(ends[0], text, sizeof(text))) > 0)
        seen.append(text, static_cast<size_t>(count));
    *ms = static_cast<double>(clock_monotonic_ns() - before) / 1e6;
    // Whatever it says from here on is read by nobody and must not stop it.
    const int drain = fork();
    if (drain == 0) {
        while (read(ends[0], text, sizeof(text)) > 0) {
        }
        _exit(0);
    }
    close(ends[0]);
    return pid;
}

void stop_daemon(int pid) {
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
    wait(nullptr);  // its reader
}

long status_field(const std::string &path, const std::string &field) {
    std::ifstream file(path);
    std::string word;
    while (file >> word)
        if (word == field + ":") {
            long value = 0;
            file >> value;
            return value;
        }
    return 0;
}

long resident_kib(int pid) {
    return status_field("/proc/" + std::to_string(pid) + "/status", "VmRSS");
}

long switches(int pid) {
    long sum = 0;
    for (const auto &task : fs::directory_iterator("/proc/" + std::to_string(pid) + "/task"))
        sum += status_field(task.path().string() + "/status", "voluntary_ctxt_switches");
    return sum;
}

double wakeups_a_second(int pid) {
    const long before = switches(pid);
    sleep(wakeup_seconds);
    return static_cast<double>(switches(pid) - before) / wakeup_seconds;
}

void put_under_load(const std::string &root, int intervals, int messages) {
    dvx_message message;
    dvx_message_init(&message, "powerhal", DVX_CODE_GAME);
    message.payload.values[1] = 1;
    dvx_message_send_and_wait(&message, -1);
    const int fd = device_open_node(root, device_interval_node);
    for (int i = 0; i < intervals; ++i)
        device_report_interval(fd, 16700);
    close(fd);
    for (int i = 0; i < messages; ++i) {
        dvx_message_init(&message, "powerhal", i % 2 != 0 ? DVX_CODE_FPS_LOCK : DVX_CODE_BROWSER);
        message.payload.values[0] = i % 4 / 2;
        dvx_message_send_and_wait(&message, -1);
    }
}

}  // namespace

double measure_start_ms(int starts) {
    bench_device();
    std::vector<double> times;
    for (int i = 0; i < starts; ++i) {
        double ms = 0;
        stop_daemon(start_measured(&ms));
        times.push_back(ms);
    }
    std::nth_element(times.begin(), times.begin() + starts / 2, times.end());
    return times[static_cast<size_t>(starts / 2)];
}

process_figures measure_process(void) {
    process_figures figures = {};
    double ms = 0;
    const int pid = start_measured(&ms);
    sleep(13);  // the thermal engine's check is over then
    figures.idle_kib = resident_kib(pid);
    figures.idle_wakeups = wakeups_a_second(pid);
    put_under_load(bench_device(), load_intervals / 100, load_messages / 100);
    sleep(1);
    figures.warm_kib = resident_kib(pid);
    put_under_load(bench_device(), load_intervals, load_messages);
    dvx_message message;
    dvx_message_init(&message, "powerhal", DVX_CODE_SOFT_KEY);
    dvx_message_send_and_wait(&message, -1);
    sleep(2);
    figures.after_load_kib = resident_kib(pid);
    figures.timer_wakeups = wakeups_a_second(pid);
    stop_daemon(pid);
    return figures;
}
