#include "tools/day.h"

#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <map>
#include <thread>
#include <vector>

#include "core/timer.h"
#include "device/virtual_device.h"
#include "tools/day_steps.h"
#include "tools/timeline.h"

namespace {

constexpr int start_timeout_ms = 5000;
constexpr useconds_t poll_pause_us = 20000;

// Log lines worth a person's look; the rest is the daemon's book-keeping.
constexpr const char *telling_lines[] = {
    "CF",    "PM : ", "PM ",      "H=",   "FT: ", "J: ",       "SC",
    "SM at", "FIA ",  "Escaping", "fail", "Fail", "Game tuner"};

bool is_telling(const timeline_entry &entry) {
    if (entry.kind != timeline_log)
        return true;
    if (entry.text.ends_with(" H"))
        return true;
    return std::any_of(std::begin(telling_lines), std::end(telling_lines),
                       [&](const char *start) { return entry.text.starts_with(start); });
}

void follow(day *today) {
    for (const timeline_entry &entry : timeline_read(&today->line)) {
        if (entry.kind >= timeline_hardware)
            today->calls.push_back(entry.text);
        if (is_telling(entry))
            timeline_print(&today->line, entry);
    }
    fflush(stdout);
}

// The first expected call that did not come in its turn, or null. Calls of one name keep their
// order; which feature hears of an event first is not settled.
const std::string *find_missing(const day *today, const day_step &step) {
    std::map<std::string, size_t> seen;
    for (const std::string &call : step.expected) {
        size_t &from = seen[call.substr(0, call.find(' '))];
        const auto at = std::find(today->calls.begin() + static_cast<ptrdiff_t>(from),
                                  today->calls.end(), call);
        if (at == today->calls.end())
            return &call;
        from = static_cast<size_t>(at - today->calls.begin()) + 1;
    }
    return nullptr;
}

void play_step(day *today, int number, const day_step &step) {
    constexpr int patience_ms = 10000;
    printf("\n%s%d. %s%s\n", today->line.colour ? "\033[1m" : "", number, step.story,
           today->line.colour ? "\033[0m" : "");
    fflush(stdout);
    today->calls.clear();
    // Acted out beside the timeline, which shows what happens as it happens.
    std::atomic<int64_t> acted_ms = INT64_MAX;
    std::thread actor([&] {
        step.act(today);
        acted_ms = get_current_monotonic_ms();
    });
    for (;;) {
        follow(today);
        const int64_t waited_ms = get_current_monotonic_ms() - acted_ms;
        if (waited_ms > step.pause_ms &&
            (find_missing(today, step) == nullptr || waited_ms > step.pause_ms + patience_ms))
            break;
        usleep(poll_pause_us);
    }
    actor.join();
    if (const std::string *call = find_missing(today, step)) {
        printf("    missing: %s\n", call->c_str());
        ++today->missing;
    }
}

void say_what_to_try(const std::string &root) {
    printf(
        "\nThe device and its daemon stay up. To drive them from a shell here:\n\n"
        "    export DVXD_ROOT=%s PATH=%s:$PATH\n"
        "    dvxctl watch                        (in a terminal of its own)\n"
        "    dvxctl activity com.example.racer/.Race\n"
        "    dvxctl window com.example.racer\n"
        "    dvxctl optimizer on\n"
        "    dvxctl game on --fps 30 --tuner 1\n"
        "    dvxctl device panel off\n"
        "    dvxctl device stop\n",
        root.c_str(), sibling_program("").c_str());
}

void stop_device(const std::string &root) {
    for (const int process : {device_daemon_process(root), device_services_process(root)})
        if (process > 0)
            kill(process, SIGTERM);
}

int start_device(const std::string &root, bool stay) {
    const std::string error = device_create(root, device_image_path());
    if (!error.empty()) {
        fprintf(stderr, "dvxctl: %s\n", error.c_str());
        return -1;
    }
    device_start_services(root, !stay);
    const int pid = device_start_daemon(root, sibling_program("dvxd"), !stay);
    if (pid > 0 && device_wait_until_started(root, pid, start_timeout_ms) == device_started)
        return pid;
    stop_device(root);
    printf("dvxd did not start; its log:\n");
    int64_t offset = 0;
    for (const std::string &line : device_read_lines(root + device_daemon_log, &offset))
        printf("%s\n", line.c_str());
    return -1;
}

}  // namespace

int play_day(const std::string &root, bool stay) {
    const int pid = start_device(root, stay);
    if (pid < 0)
        return 1;
    day today = {timeline_open(root), {}, 0};
    printf("dvxd %d on a virtual device at %s\n", pid, root.c_str());
    int number = 0;
    for (const day_step &step : day_steps)
        play_step(&today, ++number, step);

    printf("\n%s\n", today.missing == 0
                         ? "Everything that should have reached the hardware and the services did."
                         : "Something that should have reached the hardware or a service did not.");
    if (stay)
        say_what_to_try(root);
    else
        stop_device(root);
    return today.missing == 0 ? 0 : 1;
}
