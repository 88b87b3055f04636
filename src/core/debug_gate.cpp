#include "core/debug_gate.h"

#include <atomic>

namespace {

// Written by main and by the kernel event monitor, read by every thread. Relaxed: nothing is
// published with them.
constinit struct {
    std::atomic<uint8_t> enable = 0;
    std::atomic<uint8_t> mask = 255;
} gate;

}  // namespace

int rtDebugMode(uint32_t bit) {
    if (gate.enable.load(std::memory_order_relaxed) == 0)
        return 0;
    return (gate.mask.load(std::memory_order_relaxed) >> (bit % 32)) & 1;
}

void debug_gate_set(bool enable, uint8_t mask) {
    gate.mask.store(mask, std::memory_order_relaxed);
    gate.enable.store(enable ? 1 : 0, std::memory_order_relaxed);
}
