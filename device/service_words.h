// What the daemon tells other services, in words.
#pragma once

#include <string>

#include "ipc/outbound/gbm_client.h"
#include "ipc/outbound/merlak_client.h"
#include "ipc/outbound/powercontrol_client.h"

// A service that the daemon talks to.
struct device_service {
    const char *socket;
    const char *name;
    size_t message_size;  // bytes
    std::string (*describe)(const char *bytes);
};

constexpr size_t device_service_count = 3;
extern const device_service device_services[device_service_count];

// A message to a service of so many bytes: "merlak service  10 game", or how long it is where that
// is no message of the service.
std::string describe_service_message(const device_service &service, const char *bytes, size_t size);

// What one message says: "category game", "10 game", "max brightness 160:72".
std::string describe_gbm_message(const gbm_message &message);
std::string describe_merlak_message(const merlak_message &message);
std::string describe_powercontrol_message(const powercontrol_message &message);
