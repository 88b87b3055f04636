// Notification against a plain loop over function pointers, and a frame-rate request.
#include <benchmark/benchmark.h>

#include <vector>

#include "bench/setup.h"
#include "core/event_manager.h"
#include "resource/fps_manager.h"

namespace {

int counter = 0;

void callback() {
    benchmark::DoNotOptimize(++counter);
}

// Events without listeners of the daemon's own, one for each length of list.
event_id event_with(int64_t callbacks) {
    static int64_t registered[event_count] = {};
    const event_id id = callbacks == 1   ? EV_MODE_NONE_EXIT
                        : callbacks == 8 ? EV_MODE_BROWSER_EXIT
                                         : EV_MODE_SNS_EXIT;
    for (; registered[id] < callbacks; ++registered[id])
        register_callback_for_event(id, "bench", callback);
    return id;
}

void notify(benchmark::State &state) {
    bench_set_up_daemon();
    const event_id id = event_with(state.range(0));
    for (auto _ : state)
        notify_event(id);
}
BENCHMARK(notify)->Arg(1)->Arg(8)->Arg(64);

void notify_floor(benchmark::State &state) {
    std::vector<void (*)()> callbacks(static_cast<size_t>(state.range(0)), callback);
    for (auto _ : state)
        for (const auto operation : callbacks)
            operation();
}
BENCHMARK(notify_floor)->Arg(1)->Arg(8)->Arg(64);

// A request that changes nothing at the hardware: the walk, the comparison, the lock.
void fps_request(benchmark::State &state) {
    bench_set_up_daemon();
    for (auto _ : state)
        requestor_request_fps(0, 60);
}
BENCHMARK(fps_request);

}  // namespace
