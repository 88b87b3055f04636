// One frame interval in each of the analyser's modes, with the count of allocations.
#include <benchmark/benchmark.h>

#include "bench/setup.h"
#include "context/app_context.h"
#include "core/event_manager.h"
#include "fia/interval_decision.h"
#include "fia/records.h"

namespace {

constexpr int32_t steady_us = 16700;
constexpr int scene_intervals = 901;

void enter(const char *window) {
    notify_event(EV_MODE_GAME_DEFAULT_EXIT);
    set_current_window_name(window);
    notify_event(EV_MODE_GAME_DEFAULT);
}

void play(int count, int32_t interval_us) {
    for (int i = 0; i < count; ++i)
        notify_fia_interval_changed(interval_us);
}

void measure(benchmark::State &state) {
    const int64_t before = allocations();
    for (auto _ : state)
        notify_fia_interval_changed(steady_us);
    state.counters["allocations"] = static_cast<double>(allocations() - before);
}

void interval_suspended(benchmark::State &state) {
    bench_set_up_daemon();
    notify_event(EV_MODE_GAME_DEFAULT_EXIT);
    measure(state);
}
BENCHMARK(interval_suspended);

void interval_measuring(benchmark::State &state) {
    bench_set_up_daemon();
    const int64_t scenes = state.range(0);
    const std::string name = "measured" + std::to_string(scenes);
    enter(name.c_str());
    for (int64_t scene = fia.activities[fia.data->act_idx].scene_cnt; scene < scenes; ++scene) {
        fia.data->restarted = 1;  // no shortcut through a scene that is known already
        play(scene_intervals, steady_us);
        enter(name.c_str());
    }
    fia.data->restarted = 1;
    const int64_t before = allocations();
    for (auto _ : state) {
        fia.data->frame_cnt = 1;  // the measurement does not come to its end
        notify_fia_interval_changed(steady_us);
    }
    state.counters["allocations"] = static_cast<double>(allocations() - before);
}
BENCHMARK(interval_measuring)->Arg(0)->Arg(2)->Arg(5);

void interval_active(benchmark::State &state) {
    bench_set_up_daemon();
    enter("active");
    play(2 * scene_intervals, steady_us);
    // Until every cap is as low as it gets.
    play(12 * 301, steady_us);
    if (fia.data->mode != fia_mode_am)
        state.SkipWithError("not in active mode");
    measure(state);
}
BENCHMARK(interval_active);

}  // namespace
