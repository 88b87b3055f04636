// Whole client messages through the real dispatch.
#include <algorithm>

#include "ipc/client_server.h"
#include "tests/fuzz/live_daemon.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    start_live_daemon();
    dvx_message message = {};
    memcpy(&message, data, std::min(size, sizeof(message)));
    dispatch_message(&message);
    return 0;
}
