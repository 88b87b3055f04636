#include "device/service_words.h"

#include <string.h>

#include <map>

namespace {

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

}  // namespace

const device_service device_services[device_service_count] = {
    {powercontrol_service, "power-control HAL", sizeof(powercontrol_message),
     [](const char *bytes) { return describe(bytes, describe_powercontrol_message); }},
    {gbm_service, "frame-rate service", sizeof(gbm_message),
     [](const char *bytes) { return describe(bytes, describe_gbm_message); }},
    {merlak_service, "merlak service", sizeof(merlak_message),
     [](const char *bytes) { return describe(bytes, describe_merlak_message); }},
};

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

std::string describe_service_message(const device_service &service, const char *bytes,
                                     size_t size) {
    return std::string(service.name) + "  " +
           (size == service.message_size ? service.describe(bytes)
                                         : "a message of " + std::to_string(size) + " bytes");
}
