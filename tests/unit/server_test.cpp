// The client server on real sockets, one connection a step.
#include "ipc/client_server.h"

#include <cutils/sockets.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/select.h>

#include <filesystem>
#include <mutex>
#include <thread>

#include "core/connection.h"
#include "simulator/allocation.h"
#include "tests/support/lingering.h"
#include "tests/support/log_sink.h"
#include "tests/support/memory.h"
#include "tests/support/test_device.h"

namespace {

std::mutex served_lock;
std::string served;

void serve(int32_t code, const void *payload) {
    const std::lock_guard<std::mutex> guard(served_lock);
    served += std::to_string(code) + ":" + static_cast<const char *>(payload) + " ";
}
void serve_other(int32_t, const void *) {
    served += "other ";
}

auto open_descriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

dvx_message message_of(const char *client, int32_t code, const char *text) {
    dvx_message message;
    dvx_message_init(&message, client, code);
    dvx_message_set_text(&message, text);
    return message;
}

struct Server : testing::Test {
    int listening_fd = -1;

    void SetUp() override {
        if (!isolate_network())
            GTEST_SKIP() << "no network namespace of one's own here";
        listening_fd = socket_local_server("dvx-client", 0, SOCK_STREAM);
        ASSERT_GE(listening_fd, 0);
        ASSERT_EQ(register_callback("vrhal", serve), 0);
        clear_log();
    }

    static void send_on(int fd, const void *bytes, size_t size) {
        EXPECT_EQ(send(fd, bytes, size, MSG_NOSIGNAL), static_cast<ssize_t>(size));
    }

    void send_bytes(const void *bytes, size_t size) const {
        const int fd = dvx_client_connect(-1);
        send_on(fd, bytes, size);
        shutdown(fd, SHUT_WR);
        serve_client(listening_fd);
        close(fd);
    }
};

TEST_F(Server, TakesExactlyOneMessageAndGivesASilentClientUp) {
    const auto before = open_descriptors();
    dvx_message two[2] = {message_of("vrhal", 21, "a"), message_of("vrhal", 5, "b")};
    send_bytes(two, sizeof(two[0]));
    send_bytes(two, sizeof(two[0]) - 1);
    send_bytes(two, 1);
    EXPECT_EQ(served, "21:a ");
    EXPECT_TRUE(logged_messages().empty());
    send_bytes(two, sizeof(two));  // the second goes with the connection
    EXPECT_EQ(served, "21:a 21:a ");
    send_bytes(nullptr, 0);
    EXPECT_EQ(errors_logged("recv_data_from_client recv failed\n"), 1);
    EXPECT_EQ(open_descriptors(), before);

    const int silent = dvx_client_connect(-1);
    serve_client(listening_fd);
    EXPECT_EQ(errors_logged("recv_data_from_client recv failed\n"), 2);
    char byte;
    EXPECT_EQ(recv(silent, &byte, 1, 0), 0);  // closed
    close(silent);
}

// Nobody serves yet, so that this is not the last reference.
long give_lingering(int fd, const dvx_message &message) {
    const int beside = lingering_connection();
    const long count = send_lingering(fd, &message, sizeof(message), beside);
    close(beside);
    return count;
}

// As on a kernel that cannot refuse descriptors: whoever closed them here would wait for a day.
TEST_F(Server, IsNotHeldUpByDescriptorsBesideAMessage) {
    lingering_connection();
    const auto before = open_descriptors();
    const dvx_message two[2] = {message_of("vrhal", 21, "a"), message_of("vrhal", 5, "b")};
    for (const size_t carrying : {size_t{0}, size_t{1}}) {
        const int fd = dvx_client_connect(-1);
        for (size_t i = 0; i < 2; ++i)
            EXPECT_EQ(i == carrying ? give_lingering(fd, two[i])
                                    : send(fd, &two[i], sizeof(two[i]), MSG_NOSIGNAL),
                      static_cast<long>(sizeof(two[i])));
        serve_client(listening_fd);
        close(fd);
    }
    EXPECT_EQ(served, "21:a 21:a ");
    EXPECT_EQ(open_descriptors(), before);

    connection_refuse_descriptors(listening_fd);
    const int fd = dvx_client_connect(-1);
    give_lingering(fd, two[1]);  // refused, or as above
    send_on(fd, &two[0], sizeof(two[0]));
    serve_client(listening_fd);
    close(fd);
    EXPECT_TRUE(served == "21:a 21:a 21:a " || served == "21:a 21:a 5:b ") << served;
}

TEST_F(Server, SaysWhomItDoesNotKnow) {
    for (const char *name : {"vrha", "vrhal2", "", "none\nforged"}) {
        const dvx_message message = message_of(name, 21, "");
        send_bytes(&message, sizeof(message));
        EXPECT_EQ(
            errors_logged(std::string("Current Device doesn't support ") + name + " handlers."), 1);
    }
    dvx_message full = message_of("vrhal", 21, "");
    memset(full.client, 'v', sizeof(full.client));
    memcpy(full.client, "vrhal", 5);
    send_bytes(&full, sizeof(full));
    EXPECT_EQ(errors_logged("Current Device doesn't support vrhalvvvvvvvvvvvvvvv handlers."), 1);
    EXPECT_EQ(served, "");
}

TEST_F(Server, KeepsNoSenderBeyondItsLimitWhenItIsStopped) {
    const dvx_message message = message_of("vrhal", 21, "a");
    EXPECT_EQ(dvx_message_send_and_wait(&message, 5), -ETIMEDOUT);
    int queued = 1;
    int result;
    while ((result = dvx_message_send(&message, 0)) == 0)
        ++queued;
    EXPECT_EQ(result, -EAGAIN);
    EXPECT_EQ(dvx_message_send_and_wait(&message, 5), -EAGAIN);
    for (int i = 0; i < queued; ++i)
        serve_client(listening_fd);
    EXPECT_EQ(served.size(), static_cast<size_t>(queued) * strlen("21:a "));
}

// As when a debugger stops and continues the daemon.
TEST_F(Server, TakesAMessageThoughASignalInterruptsTheReceive) {
    signal(SIGUSR1, [](int) {});
    const int fd = dvx_client_connect(-1);
    std::thread listener(serve_client, listening_fd);
    for (int i = 0; i < 20; ++i) {
        usleep(1000);
        pthread_kill(listener.native_handle(), SIGUSR1);
    }
    const dvx_message message = message_of("vrhal", 21, "late");
    send_on(fd, &message, sizeof(message));
    listener.join();
    EXPECT_EQ(served, "21:late ");
    close(fd);
}

TEST_F(Server, RestsWhileItHasNoDescriptorAndServesThen) {
    const int fd = dvx_client_connect(-1);
    const dvx_message message = message_of("vrhal", 21, "a");
    send_on(fd, &message, sizeof(message));
    rlimit before;
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit none = {static_cast<rlim_t>(fd), before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    rusage start;
    rusage end;
    getrusage(RUSAGE_THREAD, &start);
    for (int i = 0; i < 5; ++i)
        serve_client(listening_fd);
    getrusage(RUSAGE_THREAD, &end);
    EXPECT_GE(end.ru_nvcsw - start.ru_nvcsw, 5);  // slept each time
    setrlimit(RLIMIT_NOFILE, &before);
    serve_client(listening_fd);
    EXPECT_EQ(served, "21:a ");
    close(fd);
}

TEST_F(Server, KeepsTheFirstRegistration) {
    EXPECT_EQ(register_callback("vrhal", serve_other), -22);
    EXPECT_EQ(errors_logged("The callback of the client vrhal is registered already."), 1);
    EXPECT_EQ(register_callback("a-name-of-more-than-19", serve_other), 0);
    EXPECT_EQ(register_callback("a-name-of-more-than", serve), -22);
    EXPECT_TRUE(gives_back_what_it_takes([] { register_callback("vrhal", serve_other); }));
    fail_allocation_after(0);
    EXPECT_EQ(register_callback("dgpc", serve), -22);
    EXPECT_EQ(errors_logged("Failed to allocate memory\n"), 1);
    const dvx_message message = message_of("vrhal", 1, "x");
    send_bytes(&message, sizeof(message));
    EXPECT_EQ(served, "1:x ");
}

TEST_F(Server, RefusesANameThatIsTakenAndADescriptorThatSelectCannotWatch) {
    EXPECT_EQ(server_init(), -22);
    close(listening_fd);
    rlimit limit;
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = FD_SETSIZE + 100;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    while (open("/dev/null", O_RDONLY) < FD_SETSIZE - 1) {
    }
    EXPECT_EQ(server_init(), -22);
    EXPECT_EQ(errors_logged("fail to create socket\n"), 2);
    close(FD_SETSIZE - 1);
    EXPECT_EQ(server_init(), 0);
    // The thread serves clients that come at once, one after the other.
    std::vector<std::thread> clients;
    for (int i = 0; i < 8; ++i)
        clients.emplace_back([] {
            const dvx_message message = message_of("vrhal", 3, "t");
            EXPECT_EQ(dvx_message_send_and_wait(&message, -1), 0);
        });
    for (std::thread &client : clients)
        client.join();
    const std::lock_guard<std::mutex> guard(served_lock);
    EXPECT_EQ(served.size(), 8 * strlen("3:t "));
}

}  // namespace
