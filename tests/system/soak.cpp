// Holds a daemon under load for a given time, then under clients and services that mean it no good,
// and tells what came of it. The exit status says whether anything was lost, leaked or reported.
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <thread>

#include "device/virtual_device.h"
#include "ipc/gbm_client.h"
#include "platform/clock.h"
#include "tests/support/service_socket.h"
#include "tests/support/test_device.h"
#include "tools/messages.h"

namespace {

constexpr int clients = 8;
constexpr int start_patience_ms = 30000;
constexpr long growth_max_kib = 64;
constexpr useconds_t settle_us = 1500000;

struct counts {
    std::atomic<long> messages = 0;
    std::atomic<long> unanswered = 0;
    std::atomic<long> intervals = 0;
    std::atomic<long> panel_changes = 0;
};

struct figures {
    long resident_kib;
    long descriptors;
};

const char *const windows[] = {"com.android.chrome", "com.kakao.talk", "com.locnall.KimGiSa",
                               "com.example.a",      "com.example.b",  "com.android.gallery3d"};

dvx_message random_message(std::minstd_rand *random) {
    const auto pick = [&](int below) {
        return static_cast<int32_t>((*random)() % static_cast<unsigned>(below));
    };
    const message_word &word =
        message_words[static_cast<size_t>(pick(static_cast<int>(message_words.size())))];
    const std::string window = windows[pick(6)];
    switch (word.payload) {
        case payload_text:
            return make_text_message(word.client, word.code,
                                     pick(2) != 0 ? window : window + "/.M");
        case payload_home:
            return make_text_message(word.client, word.code,
                                     std::to_string(pick(3)) + ":" + window);
        default:
            return make_message(word.client, word.code, {pick(3), pick(3), pick(70), pick(2)});
    }
}

void send_messages(unsigned seed, const std::atomic<bool> *stop, counts *done) {
    std::minstd_rand random(seed);
    while (!*stop) {
        const dvx_message message = random_message(&random);
        done->unanswered += dvx_message_send_and_wait(&message) == 0 ? 0 : 1;
        ++done->messages;
    }
}

void report_intervals(const std::string &root, const std::atomic<bool> *stop, counts *done) {
    const int fd = device_open_node(root, device_interval_node);
    for (int i = 0; !*stop; ++i, ++done->intervals)
        device_report_interval(fd, i % 3000 < 2500 ? 16700 : 15000 + i * 37 % 40000);
    close(fd);
}

void report_panel(const std::string &root, const std::atomic<bool> *stop, counts *done) {
    for (bool on = false; !*stop; on = !on, ++done->panel_changes) {
        device_report_panel(root, on);
        usleep(20000);
    }
}

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

// Whether the daemon still knows exactly what it was told: a known sequence gives the known calls.
bool is_exact(test_device *device) {
    device_report_panel(device->root, true);
    for (const int32_t code : {DVX_CODE_GAME, DVX_CODE_BROWSER, DVX_CODE_SNS, DVX_CODE_GEO,
                               DVX_CODE_GAME_OPTIMIZER, DVX_CODE_INCOMING_CALL}) {
        const dvx_message off = make_message("powerhal", code, {});
        dvx_message_send_and_wait(&off);
    }
    const std::vector<dvx_message> quiet = {
        make_text_message("powerhal", DVX_CODE_HOME, "0:x"),
        make_text_message("powerhal", DVX_CODE_WINDOW, "none"),
        make_text_message("powerhal", DVX_CODE_ACTIVITY, "none"),
        make_message("automode", 0, {0}),
        make_message("lowpowermode", 0, {0}),
        make_message("vrhal", DVX_CODE_VR, {0}),
        make_message("dgpc", DVX_CODE_FPS, {0})};
    for (const dvx_message &message : quiet)
        dvx_message_send_and_wait(&message);
    usleep(settle_us);
    device_calls(device);
    for (const int32_t fps : {25, 40, 0}) {
        const dvx_message request = make_message("dgpc", DVX_CODE_FPS, {fps});
        dvx_message_send_and_wait(&request);
    }
    return device_calls_of(device, "request_fps") ==
           std::vector<std::string>{"request_fps 25", "request_fps 40", "request_fps 60"};
}

// How long an honest client waits for its message's end, at worst of several.
double honest_wait_ms(int messages) {
    double worst = 0;
    for (int i = 0; i < messages; ++i) {
        const int64_t before = clock_monotonic_ns();
        const dvx_message message = make_message("powerhal", DVX_CODE_ROTATION, {});
        dvx_message_send_and_wait(&message);
        worst = std::max(worst, static_cast<double>(clock_monotonic_ns() - before) / 1e6);
    }
    return worst;
}

void print_wait(const char *beside, double wait_ms) {
    printf("| %s | %.1f ms |\n", beside, wait_ms);
    fflush(stdout);
}

void meet_hostile_clients() {
    printf("\n| beside an honest client | its longest wait |\n|---|---|\n");
    print_wait("nobody", honest_wait_ms(50));
    std::vector<int> connections;
    const auto connect_many = [&](int count) {
        for (int i = 0; i < count; ++i)
            connections.push_back(dvx_client_connect());
    };
    const auto close_all = [&] {
        for (const int fd : connections)
            close(fd);
        connections.clear();
    };
    connect_many(1);
    print_wait("one that stays silent", honest_wait_ms(1));
    close_all();
    connect_many(5);
    print_wait("five that stay silent", honest_wait_ms(1));
    close_all();

    std::atomic<bool> stop = false;
    std::thread trickler([&] {
        while (!stop) {
            const int fd = dvx_client_connect();
            for (int i = 0; fd >= 0 && i < 5 && send(fd, "x", 1, MSG_NOSIGNAL) == 1; ++i)
                usleep(1000);
            shutdown(fd, SHUT_WR);
            close(fd);
        }
    });
    print_wait("one that trickles and half-closes", honest_wait_ms(50));
    stop = true;
    trickler.join();

    stop = false;
    std::thread crowd([&] {
        while (!stop) {
            const int fd = dvx_client_connect();
            close(fd);
        }
    });
    print_wait("one that connects and leaves, without end", honest_wait_ms(200));
    stop = true;
    crowd.join();
    {
        const service_socket accepts_nothing(gbm_service);
        print_wait("a service that accepts and never reads", honest_wait_ms(50));
        listen(accepts_nothing.fd, 0);
        print_wait("a service whose queue is full", honest_wait_ms(3));
    }
}

bool load(test_device *device, int pid, int seconds) {
    counts done;
    std::atomic<bool> stop = false;
    std::vector<std::thread> workers;
    for (unsigned client = 0; client < clients; ++client)
        workers.emplace_back(send_messages, client + 1, &stop, &done);
    workers.emplace_back(report_intervals, device->root, &stop, &done);
    workers.emplace_back(report_panel, device->root, &stop, &done);
    const int warm_s = std::min(60, seconds / 2);
    sleep(static_cast<unsigned>(warm_s));
    const figures warm = read_figures(pid);
    sleep(static_cast<unsigned>(seconds - warm_s));
    stop = true;
    for (std::thread &worker : workers)
        worker.join();
    usleep(settle_us);
    const figures after = read_figures(pid);
    const bool exact = is_exact(device);
    std::ifstream log(device->root + device_daemon_log);
    const std::string said{std::istreambuf_iterator<char>(log), {}};
    const bool silent = said.find("Sanitizer") == std::string::npos;

    printf("%d s: %ld messages, %ld intervals, %ld panel changes; %ld messages unanswered\n",
           seconds, done.messages.load(), done.intervals.load(), done.panel_changes.load(),
           done.unanswered.load());
    printf(
        "resident after %d s %ld KiB, at the end %ld KiB; at most %ld descriptors, at the end "
        "%ld\n",
        warm_s, warm.resident_kib, after.resident_kib, warm.descriptors, after.descriptors);
    printf("the daemon is %s about its state; the sanitizer is %s\n", exact ? "exact" : "WRONG",
           silent ? "silent" : "NOT SILENT");
    if (!silent)
        fprintf(stderr, "%s\n", said.c_str());
    // A sanitizer keeps books of its own, whose growth says nothing of the daemon's.
    const bool flat = getenv("DVX_SANITIZED") != nullptr ||
                      after.resident_kib - warm.resident_kib <= growth_max_kib;
    return done.unanswered == 0 && exact && silent && flat &&
           after.descriptors <= warm.descriptors && waitpid(pid, nullptr, WNOHANG) == 0;
}

}  // namespace

int main(int argc, char **argv) {
    const int seconds = argc == 2 ? atoi(argv[1]) : 0;
    if (seconds < 2) {
        fprintf(stderr, "usage: soak SECONDS, at least 2\n");
        return 2;
    }
    if (!isolate_network()) {
        fprintf(stderr, "soak: no network namespace of one's own here\n");
        return 2;
    }
    test_device device;
    const int pid = device_start_daemon(device.root, built("bin/dvxd"));
    if (device_wait_until_started(device.root, pid, start_patience_ms) != device_started) {
        fprintf(stderr, "soak: the daemon does not start\n");
        return 1;
    }
    const bool held = load(&device, pid, seconds);
    meet_hostile_clients();
    const bool alive = waitpid(pid, nullptr, WNOHANG) == 0;
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
    printf("\n%s\n", held && alive ? "The daemon held." : "The daemon did NOT hold.");
    return held && alive ? 0 : 1;
}
