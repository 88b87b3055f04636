// Sequences of messages, reports, frames and time, with services and libraries that change.
#include "tests/fuzz/live_daemon.h"
#include "tests/support/random_life.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    start_live_daemon();
    byte_source from = {data, size};
    while (from.left > 0)
        let_something_happen(&from);
    simulator_take();
    return 0;
}
