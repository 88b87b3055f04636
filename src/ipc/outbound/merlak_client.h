// Client of the merlak service. Any thread may call.
#pragma once

#include <cstddef>
#include <cstdint>

struct merlak_message {
    char sender[20];
    uint32_t command;
    uint32_t value;
};
static_assert(sizeof(merlak_message) == 28);
static_assert(offsetof(merlak_message, command) == 20);
static_assert(offsetof(merlak_message, value) == 24);

inline constexpr char merlak_service[] = "merlak-client";

// 0 when sent, else -EINVAL, silently.
int request_to_merlak(uint32_t command, uint32_t value);
