// The gate of the detailed log lines. It stands below everything that logs; debug_mode reads the
// properties that set it. Any thread may ask; a byte that is just being written reads old or new,
// which decides about one log line.
#pragma once

#include <atomic>
#include <cstdint>

enum debug_group : uint32_t {
    debug_events = 0,    // event manager, policy
    debug_powerhal = 5,  // power-HAL handler
    debug_features = 7,  // timers, thermal, profiles, activity trigger, frame interval analysis
};

// The groups that are open: the mask while debug lines are on, else 0. Written by main and by the
// kernel event monitor, read by every thread; relaxed, as nothing is published with it.
extern std::atomic<uint8_t> debug_gate_groups;

// 1 when debug lines are on and the mask holds the bit of this number, else 0.
inline int rtDebugMode(uint32_t bit) {
    return (debug_gate_groups.load(std::memory_order_relaxed) >> (bit % 32)) & 1;
}

// Sets the gate: whether lines are wanted at all, and of which groups.
void debug_gate_set(bool enable, uint8_t mask);

// The gate of lines that are never written, and the debug target of the frame interval analysis,
// which this configuration does not have: one trivial operation under three names.
constexpr int32_t stDebugMode(uint32_t /*bit*/) {
    return 0;
}
constexpr int32_t get_target(int32_t /*target_fps*/) {
    return 0;
}
constexpr int32_t set_target(int32_t /*target_fps*/) {
    return 0;
}
