// Everything at once on a running daemon: clients that tell it whatever they can, frames, and a
// panel that goes on and off.
#pragma once

#include <unistd.h>

#include <atomic>
#include <thread>

#include "device/virtual_device.h"
#include "tests/support/byte_source.h"

struct load {
    std::atomic<bool> stop = false;
    std::atomic<long> messages = 0;
    std::atomic<long> unanswered = 0;
    std::atomic<long> intervals = 0;
    std::atomic<long> panel_changes = 0;
    std::vector<std::thread> workers;

    load(const std::string &root, unsigned clients) {
        for (unsigned client = 1; client <= clients; ++client)
            workers.emplace_back([this, client] { send_messages(client); });
        workers.emplace_back([this, root] {
            const int fd = device_open_node(root, device_interval_node);
            for (int i = 0; !stop; ++i, ++intervals)
                device_report_interval(fd, i % 3000 < 2500 ? 16700 : 15000 + i * 37 % 40000);
            close(fd);
        });
        workers.emplace_back([this, root] {
            for (bool on = false; !stop; on = !on, ++panel_changes, usleep(20000))
                device_report_panel(root, on);
        });
    }

    void send_messages(unsigned seed) {
        constexpr size_t longest = 8;
        std::minstd_rand random(seed);
        for (; !stop; ++messages) {
            const std::vector<uint8_t> bytes = random_bytes(&random, longest);
            byte_source from = {bytes.data(), bytes.size()};
            const dvx_message message = something_to_tell(&from);
            unanswered += dvx_message_send_and_wait(&message, answer_timeout_ms) == 0 ? 0 : 1;
        }
    }

    void end() {
        stop = true;
        for (std::thread &worker : workers)
            worker.join();
    }
};
