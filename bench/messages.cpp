// A message: connect, send, handler returned, closed; against a bare server with the same system
// calls, its limit to a silent client's patience included, and against one without that limit. A
// client waits for the end of each message, or keeps as many under way as the queue holds.
#include <benchmark/benchmark.h>
#include <cutils/sockets.h>
#include <sys/select.h>
#include <sys/time.h>

#include <thread>

#include "bench/setup.h"
#include "ipc/client_handlers.h"
#include "ipc/client_server.h"

namespace {

constexpr char floor_socket[] = "dvx-floor";
constexpr char bare_socket[] = "dvx-bare";  // without the limit
constexpr int backlog = 20;
constexpr int burst_max = 16;  // messages under way at once

// The server's calls to the system and nothing else.
void serve_floor(int listening_fd, bool limited) {
    constexpr timeval timeout = {0, 500000};
    fd_set watched;
    FD_ZERO(&watched);
    FD_SET(listening_fd, &watched);
    for (;;) {
        fd_set ready = watched;
        select(FD_SETSIZE, &ready, nullptr, nullptr, nullptr);
        dvx_message message = {};
        sockaddr_un address;
        socklen_t length = sizeof(address);
        const int fd =
            accept4(listening_fd, reinterpret_cast<sockaddr *>(&address), &length, SOCK_CLOEXEC);
        if (limited)
            setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof(timeout));
        benchmark::DoNotOptimize(recv(fd, &message, sizeof(message), 0));
        close(fd);
    }
}

void start_floors() {
    static const bool started = [] {
        for (const char *name : {floor_socket, bare_socket}) {
            const int fd = socket_local_server(name, 0, SOCK_STREAM);
            listen(fd, backlog);
            std::thread(serve_floor, fd, name == floor_socket).detach();
        }
        return true;
    }();
    benchmark::DoNotOptimize(started);
}

void start_server() {
    static const bool started = [] {
        bench_set_up_daemon();
        init_fevent_monitor();
        return server_init() == 0;
    }();
    benchmark::DoNotOptimize(started);
}

int send_to(const char *socket_name, const dvx_message &message) {
    const int fd = socket_local_client(socket_name, 0, SOCK_STREAM);
    if (fd >= 0)
        benchmark::DoNotOptimize(send(fd, &message, sizeof(message), MSG_NOSIGNAL));
    return fd;
}

void wait_for_end(int fd) {
    char byte;
    benchmark::DoNotOptimize(recv(fd, &byte, 1, 0));
    close(fd);
}

// A frame rate's lock: an event that only the frame-rate bridge would hear, and it is not set up.
dvx_message plain_message() {
    dvx_message message;
    dvx_message_init(&message, "powerhal", DVX_CODE_FPS_LOCK);
    return message;
}

void round_trips(benchmark::State &state, const char *socket_name) {
    const dvx_message message = plain_message();
    for (auto _ : state)
        wait_for_end(send_to(socket_name, message));
}

void bursts(benchmark::State &state, const char *socket_name) {
    const dvx_message message = plain_message();
    const int64_t burst = state.range(0);
    int under_way[burst_max];
    for (auto _ : state) {
        for (int64_t i = 0; i < burst; ++i)
            under_way[i] = send_to(socket_name, message);
        for (int64_t i = 0; i < burst; ++i)
            wait_for_end(under_way[i]);
    }
    state.SetItemsProcessed(state.iterations() * burst);
}

void message_round_trip(benchmark::State &state) {
    start_server();
    round_trips(state, DVX_CLIENT_SOCKET);
}
BENCHMARK(message_round_trip)->UseRealTime();

void message_round_trip_floor(benchmark::State &state) {
    start_floors();
    round_trips(state, floor_socket);
}
BENCHMARK(message_round_trip_floor)->UseRealTime();

void message_round_trip_bare(benchmark::State &state) {
    start_floors();
    round_trips(state, bare_socket);
}
BENCHMARK(message_round_trip_bare)->UseRealTime();

void message_burst(benchmark::State &state) {
    start_server();
    bursts(state, DVX_CLIENT_SOCKET);
}
BENCHMARK(message_burst)->Arg(4)->Arg(burst_max)->UseRealTime();

void message_burst_floor(benchmark::State &state) {
    start_floors();
    bursts(state, floor_socket);
}
BENCHMARK(message_burst_floor)->Arg(4)->Arg(burst_max)->UseRealTime();

}  // namespace
