#include "tools/services.h"

#include <cutils/sockets.h>
#include <poll.h>
#include <stdio.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <map>

#include "device/virtual_device.h"

namespace {

constexpr size_t message_max = sizeof(gbm_message);

// Words for a command word's argument, by its group.
struct group_words {
    const char *group;
    std::map<uint32_t, const char *> arguments;
};

const std::map<uint32_t, group_words> gbm_words = {
    {gbm_restoration,
     {"restoration",
      {{0, "touch"}, {1, "frame-rate lock"}, {2, "frame-rate unlock"}, {3, "rotation"}}}},
    {gbm_package_status, {"package status", {}}},
    {gbm_game_optimizer, {"game optimizer", {{0, "off"}, {1, "on"}}}},
    {gbm_ofmode, {"ofmode", {{0, "released"}, {1, "set"}}}},
    {gbm_category,
     {"category", {{0, "none"}, {1, "geo"}, {2, "browser"}, {3, "sns"}, {5, "game"}}}},
    {gbm_floating_window, {"floating window", {{0, "off"}, {1, "on"}}}},
};

const std::map<uint32_t, const char *> merlak_words = {
    {0, "low frame rate"}, {1, "high frame rate"}, {2, "app changed"}, {3, "game"}, {4, "no game"}};

std::string word_of(const std::map<uint32_t, const char *> &words, uint32_t value) {
    const auto found = words.find(value);
    return found != words.end() ? found->second : std::to_string(value);
}

template <typename message>
std::string describe(const char *bytes, std::string (*words)(const message &)) {
    message received;
    memcpy(&received, bytes, sizeof(received));
    return words(received);
}

struct service {
    const char *socket;
    const char *name;
    size_t message_size;
    std::string (*describe)(const char *bytes);
};

const service services[] = {
    {powercontrol_service, "power-control HAL", sizeof(powercontrol_message),
     [](const char *bytes) { return describe(bytes, describe_powercontrol_message); }},
    {gbm_service, "frame-rate service", sizeof(gbm_message),
     [](const char *bytes) { return describe(bytes, describe_gbm_message); }},
    {merlak_service, "merlak service", sizeof(merlak_message),
     [](const char *bytes) { return describe(bytes, describe_merlak_message); }},
};
constexpr size_t service_count = std::size(services);

std::string receive_words(int listening_fd, const service &from) {
    constexpr timeval patience = {1, 0};
    char bytes[message_max];
    const int fd = accept(listening_fd, nullptr, nullptr);
    if (fd < 0)
        return "no connection";
    setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
    const ssize_t count = recv(fd, bytes, from.message_size, MSG_WAITALL);
    close(fd);
    if (count != static_cast<ssize_t>(from.message_size))
        return "a message of " + std::to_string(count) + " bytes";
    return from.describe(bytes);
}

void write_down(const std::string &root, const service &from, const std::string &words,
                bool print) {
    const std::string note =
        device_append_note(root + device_services_log, std::string(from.name) + "  " + words);
    if (print) {
        printf("%s\n", note.c_str());
        fflush(stdout);
    }
}

}  // namespace

std::string describe_gbm_message(const gbm_message &message) {
    if (message.type == gbm_type_package)
        return "package " +
               std::string(message.package, strnlen(message.package, sizeof(message.package)));
    const auto group = gbm_words.find(message.command & ~255u);
    if (group == gbm_words.end())
        return "command " + std::to_string(message.command);
    return group->second.group +
           std::string(1, ' ').append(word_of(group->second.arguments, message.command & 255));
}

std::string describe_merlak_message(const merlak_message &message) {
    return std::to_string(message.command).append(" ").append(word_of(merlak_words, message.value));
}

std::string describe_powercontrol_message(const powercontrol_message &message) {
    return "max brightness " +
           std::to_string(message.first).append(":").append(std::to_string(message.second));
}

int serve_services(const std::string &root, bool print) {
    pollfd listening[service_count];
    int served = 0;
    for (size_t i = 0; i < service_count; ++i) {
        listening[i] = {
            socket_local_server(services[i].socket, ANDROID_SOCKET_NAMESPACE_ABSTRACT, SOCK_STREAM),
            POLLIN, 0};
        if (listening[i].fd >= 0)
            ++served;
        else
            fprintf(stderr, "dvxctl: %s: %s\n", services[i].socket, strerror(errno));
    }
    while (served > 0 && poll(listening, service_count, -1) >= 0)
        for (size_t i = 0; i < service_count; ++i)
            if (listening[i].revents != 0)
                write_down(root, services[i], receive_words(listening[i].fd, services[i]), print);
    return 1;
}
