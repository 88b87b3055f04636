// Holds a daemon under load for a given time, then under clients and services that mean it no good,
// and tells what came of it. The exit status says whether anything was lost, leaked or reported.
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include "device/virtual_device.h"
#include "ipc/outbound/gbm_client.h"
#include "tests/support/lingering.h"
#include "tests/support/load.h"
#include "tests/support/service_socket.h"
#include "tests/support/test_device.h"
#include "tools/base/files.h"
#include "tools/recording/messages.h"
#include "tools/recording/timeline.h"
#include "tools/scenario/play.h"

namespace {

constexpr int clients = 8;
constexpr int start_patience_ms = 30000;
// Far above what stacks and the allocator touch for the first time after the warm part of a run,
// far below what a few bytes lost with each of its messages would come to.
constexpr long growth_max_kib = 256;
constexpr useconds_t settle_us = 1500000;

struct figures {
    long resident_kib;
    long descriptors;
};

figures read_figures(int pid) {
    figures now = {0, 0};
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    for (std::string word; status >> word;)
        if (word == "VmRSS:")
            status >> now.resident_kib;
    const std::filesystem::directory_iterator open_files("/proc/" + std::to_string(pid) + "/fd");
    now.descriptors = std::distance(open_files, std::filesystem::directory_iterator());
    return now;
}

// Whether the daemon still knows exactly what it was told: the scenario, played on it as it runs.
bool is_exact(const std::string &root, const scenario &at_rest) {
    timeline line = timeline_open(root);
    target daemon = make_device_target(root, 1, true);
    daemon.start = [](const std::vector<happening> &) { return result{}; };
    daemon.records = [&] { return timeline_read(&line); };
    const std::string wrong = play_scenario(daemon, at_rest, {});
    fprintf(stderr, "%s", wrong.c_str());
    return wrong.empty();
}

long honest_unanswered = 0;

// How long an honest client waits for its message's end, at worst of several.
double honest_wait_ms(int messages,
                      const dvx_message &message = make_message("powerhal", DVX_CODE_ROTATION,
                                                                {})) {
    double worst = 0;
    for (int i = 0; i < messages; ++i) {
        const auto before = std::chrono::steady_clock::now();
        honest_unanswered += dvx_message_send_and_wait(&message, answer_timeout_ms) == 0 ? 0 : 1;
        const std::chrono::duration<double, std::milli> waited =
            std::chrono::steady_clock::now() - before;
        worst = std::max(worst, waited.count());
    }
    return worst;
}

void print_wait(const char *beside, double wait_ms) {
    printf("| %s | %.1f ms |\n", beside, wait_ms);
    fflush(stdout);
}

void stay_silent(const char *who, size_t count) {
    std::vector<int> connections(count);
    for (int &fd : connections)
        fd = dvx_client_connect(-1);
    print_wait(who, honest_wait_ms(1));
    for (const int fd : connections)
        close(fd);
}

// Beside somebody who does the same again and again.
void repeat(const char *who, int messages, void (*misbehave)(int fd)) {
    std::atomic<bool> stop = false;
    std::thread other([&] {
        while (!stop) {
            const int fd = dvx_client_connect(-1);
            misbehave(fd);
            close(fd);
        }
    });
    print_wait(who, honest_wait_ms(messages));
    stop = true;
    other.join();
}

// Where the daemon has been quicker, this process is the last to close, and waits for a day.
void give_lingering(int fd, const void *bytes, size_t size, int beside) {
    send_lingering(fd, bytes, size, beside);
    std::thread([beside] { close(beside); }).detach();
}

// Beside a service that answers each message with a descriptor, while the daemon still has the
// connection where it is quick enough.
void meet_lingering_service() {
    const service_socket service(gbm_service);
    std::atomic<bool> stop = false;
    std::thread answers([&] {
        while (!stop) {
            const int beside = lingering_connection();
            int fd;
            while ((fd = accept(service.fd, nullptr, nullptr)) < 0 && !stop) {
            }
            give_lingering(fd, "x", 1, beside);
            close(fd);
        }
    });
    print_wait("a service that sends descriptors which linger for a day", honest_wait_ms(200));
    stop = true;
    answers.join();
}

void meet_hostile_clients() {
    printf("\n| beside an honest client | its longest wait |\n|---|---|\n");
    print_wait("nobody", honest_wait_ms(50));
    stay_silent("one that stays silent", 1);
    stay_silent("five that stay silent", 5);
    repeat("one that trickles and half-closes", 50, [](int fd) {
        for (int i = 0; fd >= 0 && i < 5 && send(fd, "x", 1, MSG_NOSIGNAL) == 1; ++i)
            usleep(1000);
        shutdown(fd, SHUT_WR);
    });
    repeat("one that connects and leaves, without end", 200, [](int) {});
    repeat("one that sends descriptors which linger for a day", 50, [](int fd) {
        const dvx_message message = make_message("powerhal", DVX_CODE_ROTATION, {});
        give_lingering(fd, &message, sizeof(message), lingering_connection());
    });
    meet_lingering_service();
    const service_socket accepts_nothing(gbm_service);
    print_wait("a service that accepts and never reads", honest_wait_ms(50));
    listen(accepts_nothing.fd, 0);
    const dvx_message game = make_message("powerhal", DVX_CODE_GAME, {0, 1, 60, 0});
    print_wait("a service whose queue is full: a game's first report", honest_wait_ms(1, game));
    print_wait("its next twenty reports", honest_wait_ms(20, game));
}

bool sanitizer_is_silent(const test_device &device) {
    const std::string said = read_file(device.root + device_daemon_log);
    const bool silent = said.find("Sanitizer") == std::string::npos;
    if (!silent)
        fprintf(stderr, "%s\n", said.c_str());
    return silent;
}

int start(const test_device &device) {
    const int pid = device_start_daemon(device.root, built("bin/dvxd"));
    if (device_wait_until_started(device.root, pid, start_patience_ms) == device_started)
        return pid;
    fprintf(stderr, "soak: the daemon does not start\n");
    exit(1);
}

// Ends the daemon; whether it had lived until then, with nothing for a sanitizer to say.
bool end(const test_device &device, int pid) {
    const bool alive = waitpid(pid, nullptr, WNOHANG) == 0;
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
    return sanitizer_is_silent(device) && alive;
}

// A recording, to which threads write that are at a happening and threads that are at none.
bool record_under_load(const test_device &device, int seconds) {
    setenv("DVXD_RECORD", (device.root + device_recording).c_str(), 1);
    const int pid = start(device);
    load done(device.root, clients);
    std::atomic<bool> stop = false;
    std::thread leaver([&] {
        while (!stop)
            close(dvx_client_connect(-1));
    });
    sleep(static_cast<unsigned>(seconds));
    stop = true;
    leaver.join();
    done.end();
    const bool held = end(device, pid) && done.unanswered == 0;
    printf("\nrecording for %d s: %ld messages, %ld unanswered; %s\n", seconds,
           done.messages.load(), done.unanswered.load(), held ? "held" : "NOT HELD");
    return held;
}

bool hold(test_device *device, int pid, int seconds, const scenario &at_rest) {
    load done(device->root, clients);
    const int warm_s = std::min(60, seconds / 2);
    sleep(static_cast<unsigned>(warm_s));
    const figures warm = read_figures(pid);
    sleep(static_cast<unsigned>(seconds - warm_s));
    done.end();
    usleep(settle_us);
    const figures after = read_figures(pid);
    const bool exact = is_exact(device->root, at_rest);
    const bool silent = sanitizer_is_silent(*device);
    printf("%d s: %ld messages, %ld intervals, %ld panel changes; %ld messages unanswered\n",
           seconds, done.messages.load(), done.intervals.load(), done.panel_changes.load(),
           done.unanswered.load());
    printf(
        "resident after %d s %ld KiB, at the end %ld KiB; at most %ld descriptors, at the end "
        "%ld\n",
        warm_s, warm.resident_kib, after.resident_kib, warm.descriptors, after.descriptors);
    printf("the daemon is %s about its state; the sanitizer is %s\n", exact ? "exact" : "WRONG",
           silent ? "silent" : "NOT SILENT");
    // A sanitizer keeps books of its own, whose growth says nothing of the daemon's.
    const bool flat = getenv("DVX_SANITIZED") != nullptr ||
                      after.resident_kib - warm.resident_kib <= growth_max_kib;
    const bool alive = waitpid(pid, nullptr, WNOHANG) == 0;
    const bool closed = after.descriptors <= warm.descriptors;
    printf("memory %s, descriptors %s, the daemon %s\n", flat ? "flat" : "GROWS",
           closed ? "closed" : "LEFT OPEN", alive ? "lives" : "DIED");
    return done.unanswered == 0 && exact && silent && flat && closed && alive;
}

}  // namespace

int main(int argc, char **argv) {
    const int seconds = argc == 3 ? atoi(argv[1]) : 0;
    std::ifstream input(argc == 3 ? argv[2] : "");
    const scenario_file at_rest = read_scenarios(input);
    if (seconds < 2 || !at_rest.error.empty()) {
        fprintf(stderr, "usage: soak SECONDS SCENARIO, at least 2; %s\n", at_rest.error.c_str());
        return 2;
    }
    if (!isolate_network()) {
        fprintf(stderr, "soak: no network namespace of one's own here\n");
        return 2;
    }
    test_device device;
    const int pid = start(device);
    bool held = hold(&device, pid, seconds, at_rest.scenarios[0]);
    meet_hostile_clients();
    held = end(device, pid) && held && honest_unanswered == 0;
    held = record_under_load(device, std::max(2, seconds / 4)) && held;
    printf("\n%s\n", held ? "The daemon held." : "The daemon did NOT hold.");
    return held ? 0 : 1;
}
