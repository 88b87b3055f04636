// What an operation leaves allocated. The sanitizers find more, but not in every build.
#pragma once

#include <malloc.h>

#include <cstddef>

#include "tests/support/log_sink.h"

// Whether running the operation over and over takes no more memory, the log's lines aside: what is
// lost each time adds up, what the allocator keeps at hand does not.
template <typename operation>
bool gives_back_what_it_takes(operation run) {
    constexpr int rounds = 100;
    constexpr size_t smallest_loss = 32;
    const auto run_all = [&] {
        for (int i = 0; i < rounds; ++i) {
            run();
            clear_log();
        }
    };
    run_all();
    const size_t before = mallinfo2().uordblks;
    run_all();
    return mallinfo2().uordblks < before + rounds * smallest_loss;
}
