// Whole client messages through the real dispatch.
#include <algorithm>

#include "tests/fuzz/live_daemon.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    start_live_daemon();
    dvx_message message = {};
    memcpy(&message, data, std::min(size, sizeof(message)));
    take_up(make_message_happening(message));
    simulator_take();
    return 0;
}
