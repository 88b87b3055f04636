// Records random days of a daemon under load and holds their replays against them: clients,
// intervals, the panel, timers, properties and a library's answers that change on the way, a
// service that comes and goes.
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <memory>
#include <random>
#include <thread>

#include "device/virtual_device.h"
#include "ipc/outbound/merlak_client.h"
#include "tests/support/byte_source.h"
#include "tests/support/service_socket.h"
#include "tests/support/test_device.h"
#include "tools/commands/replay_command.h"
#include "tools/simulated/child_process.h"

namespace {

constexpr unsigned clients = 2;
constexpr unsigned messages_wanted = 10000;
constexpr long intervals_wanted = 1000000;
constexpr long quiet_intervals = 300000;
constexpr int start_patience_ms = 30000;
constexpr useconds_t pause_us = 50000;
constexpr useconds_t settle_us = 1500000;  // timers that are armed run out

// Clients share the messages; each pauses a little, so that intervals come in between.
void send_messages(unsigned seed, std::atomic<long> *unanswered) {
    constexpr size_t longest = 8;
    std::minstd_rand random(seed);
    for (unsigned i = 0; i < messages_wanted / clients; ++i) {
        const std::vector<uint8_t> bytes = random_bytes(&random, longest);
        byte_source from = {bytes.data(), bytes.size()};
        const dvx_message message = something_to_tell(&from);
        *unanswered += dvx_message_send_and_wait(&message, answer_timeout_ms) == 0 ? 0 : 1;
        usleep(static_cast<useconds_t>(random() % 1000));
    }
}

void report_intervals(const std::string &root, long count) {
    const int fd = device_open_node(root, device_interval_node);
    for (int i = 0; i < count; ++i)
        device_report_interval(fd, i % 3000 < 2500 ? 16700 : 15000 + i * 37 % 40000);
    close(fd);
}

// Changes what the daemon asks the device for, and the panel.
void change_device(test_device *device, const std::atomic<bool> &over, unsigned seed) {
    std::minstd_rand random(seed);
    std::unique_ptr<service_socket> service;
    while (!over) {
        device_set_property(device->root, "debug.dvxd_log.enable", random() % 4 == 0 ? "0" : "1");
        device_set_property(device->root, "sys.zuv.compactmode.enabled",
                            random() % 2 == 0 ? "true" : "false");
        device_set_answer(device->root, "enable_thermal_config", random() % 2 == 0 ? "0" : "-1");
        if (random() % 2 == 0)
            service =
                service == nullptr ? std::make_unique<service_socket>(merlak_service) : nullptr;
        device_report_panel(device->root, random() % 4 != 0);
        usleep(pause_us);
    }
}

// Empty, or what went wrong.
std::string record_day(unsigned seed, const std::string &path) {
    test_device device;
    setenv("DVXD_RECORD", path.c_str(), 1);
    const int pid = device_start_daemon(device.root, built("bin/dvxd"));
    if (device_wait_until_started(device.root, pid, start_patience_ms) != device_started)
        return "the daemon does not start";
    // A game in peace first, so that its caps go down.
    for (const dvx_message &message :
         {make_text_message("powerhal", DVX_CODE_ACTIVITY, "game/.Game"),
          make_text_message("powerhal", DVX_CODE_WINDOW, "game"),
          make_message("powerhal", DVX_CODE_GAME, {0, 1, 60, 0})})
        dvx_message_send_and_wait(&message, answer_timeout_ms);
    report_intervals(device.root, quiet_intervals);
    std::atomic<long> unanswered = 0;
    std::atomic<bool> over = false;
    std::vector<std::thread> workers;
    for (unsigned client = 0; client < clients; ++client)
        workers.emplace_back(send_messages, seed * clients + client, &unanswered);
    workers.emplace_back(report_intervals, device.root, intervals_wanted - quiet_intervals);
    std::thread changer([&] { change_device(&device, over, seed); });
    for (std::thread &worker : workers)
        worker.join();
    over = true;
    changer.join();
    usleep(settle_us);
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
    return unanswered == 0 ? "" : "a message was not answered";
}

}  // namespace

int main(int argc, char **argv) {
    if (argc < 2 || !isolate_network()) {
        fprintf(stderr, argc < 2 ? "usage: replays SEED...\n"
                                 : "replays: no network namespace of one's own here\n");
        return 2;
    }
    int different = 0;
    for (int i = 1; i < argc; ++i) {
        const std::string path = "/tmp/dvx-replay-" + std::to_string(getpid()) + ".rec";
        const std::string wrong = record_day(static_cast<unsigned>(atoi(argv[i])), path);
        printf("seed %s: %s", argv[i], wrong.empty() ? "" : (wrong + "\n").c_str());
        replay_options options;
        options.compare = true;
        const child_result replayed =
            run_in_child([&] { return std::to_string(replay_command(path, options)); });
        different += wrong.empty() && replayed.error.empty() && replayed.output == "0" ? 0 : 1;
        unlink(path.c_str());
    }
    return different == 0 ? 0 : 1;
}
