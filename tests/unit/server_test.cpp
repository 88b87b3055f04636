// The client server on real sockets, one connection a step.
#include "ipc/client_server.h"

#include <cutils/sockets.h>
#include <dirent.h>
#include <gtest/gtest.h>

#include <mutex>
#include <thread>

#include "tests/support/allocation.h"
#include "tests/support/log_sink.h"
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

int open_descriptors() {
    int count = 0;
    DIR *directory = opendir("/proc/self/fd");
    while (readdir(directory) != nullptr)
        ++count;
    closedir(directory);
    return count;
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

    void send_bytes(const void *bytes, size_t size) {
        const int fd = dvx_client_connect();
        ASSERT_GE(fd, 0);
        if (size > 0) {
            EXPECT_EQ(send(fd, bytes, size, MSG_NOSIGNAL), static_cast<ssize_t>(size));
        }
        shutdown(fd, SHUT_WR);
        serve_client(listening_fd);
        close(fd);
    }
};

TEST_F(Server, TakesExactlyOneMessage) {
    const int before = open_descriptors();
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

TEST_F(Server, GivesASilentClientUp) {
    const int fd = dvx_client_connect();
    serve_client(listening_fd);
    EXPECT_EQ(errors_logged("recv_data_from_client recv failed\n"), 1);
    char byte;
    EXPECT_EQ(recv(fd, &byte, 1, 0), 0);  // closed
    close(fd);
}

TEST_F(Server, KeepsTheFirstRegistration) {
    EXPECT_EQ(register_callback("vrhal", serve_other), -22);
    EXPECT_EQ(errors_logged("The callback of the client vrhal is registered already."), 1);
    EXPECT_EQ(register_callback("a-name-of-more-than-19", serve_other), 0);
    EXPECT_EQ(register_callback("a-name-of-more-than", serve), -22);
    fail_allocation_after(0);
    EXPECT_EQ(register_callback("dgpc", serve), -22);
    EXPECT_EQ(errors_logged("Failed to allocate memory\n"), 1);
    const dvx_message message = message_of("vrhal", 1, "x");
    send_bytes(&message, sizeof(message));
    EXPECT_EQ(served, "1:x ");
}

TEST_F(Server, RefusesANameThatIsTaken) {
    EXPECT_EQ(server_init(), -22);
    EXPECT_EQ(errors_logged("fail to create socket\n"), 1);
    close(listening_fd);
    EXPECT_EQ(server_init(), 0);
    // The thread serves clients that come at once, one after the other.
    std::vector<std::thread> clients;
    for (int i = 0; i < 8; ++i)
        clients.emplace_back([] {
            const dvx_message message = message_of("vrhal", 3, "t");
            EXPECT_EQ(dvx_message_send_and_wait(&message), 0);
        });
    for (std::thread &client : clients)
        client.join();
    const std::lock_guard<std::mutex> guard(served_lock);
    EXPECT_EQ(served.size(), 8 * strlen("3:t "));
}

}  // namespace
