#include "core/debug_gate.h"

constinit std::atomic<uint8_t> debug_gate_groups = 0;

void debug_gate_set(bool enable, uint8_t mask) {
    debug_gate_groups.store(enable ? mask : 0, std::memory_order_relaxed);
}
