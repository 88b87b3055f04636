// Client of the power-control HAL: the highest brightness that it may set. Any thread may call.
#pragma once

#include <cstddef>
#include <cstdint>

struct powercontrol_message {
    char sender[20];
    int32_t reserved;
    int32_t code;
    int32_t first;
    int32_t second;
    char rest[32];
};
static_assert(sizeof(powercontrol_message) == 68);
static_assert(offsetof(powercontrol_message, code) == 24);
static_assert(offsetof(powercontrol_message, first) == 28);
static_assert(offsetof(powercontrol_message, second) == 32);

inline constexpr char powercontrol_service[] = "powercontrol-client";

// 0 when sent, else -EINVAL.
int request_to_powercontrol_hal(const powercontrol_message *message);

// Always 0: a notification that cannot be sent is lost.
int notify_to_framework_max_brightness(int32_t first, int32_t second);
