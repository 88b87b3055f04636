// The simulator: a frame interval through it beside the interval itself, a day of messages and
// timers, a replay from its text to its end, and the lab's games. A program of its own, as it
// brings its own platform.
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "device/virtual_device.h"
#include "fia/interval_decision.h"
#include "simulator/simulator.h"
#include "tools/base/clock.h"
#include "tools/lab/games.h"
#include "tools/lab/run.h"
#include "tools/recording/messages.h"
#include "tools/simulated/child_process.h"
#include "tools/simulated/replay.h"

namespace {

constexpr int rounds = 9;
constexpr int intervals = 2000000;
constexpr int32_t steady_us = 16700;
constexpr double interval_limit = 3;  // times the interval itself
constexpr double day_limit_ms = 1000;
constexpr int replay_rounds = 3;
constexpr double rate_limit = 3;  // millions a second
constexpr double lab_limit_s = 2;
constexpr int64_t minute_ns = 60000000000;
constexpr int minutes_a_day = 24 * 60;

double now_ns() {
    return static_cast<double>(monotonic_ns());
}

template <typename operation>
double median_ns(operation measured) {
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round) {
        const double before = now_ns();
        measured();
        times.push_back(now_ns() - before);
    }
    std::nth_element(times.begin(), times.begin() + rounds / 2, times.end());
    return times[rounds / 2];
}

void tell(const dvx_message &message) {
    take_up(make_message_happening(message));
}

void enter_game() {
    tell(make_text_message("powerhal", DVX_CODE_ACTIVITY, "com.example/.Game"));
    tell(make_text_message("powerhal", DVX_CODE_WINDOW, "com.example"));
    tell(make_message("powerhal", DVX_CODE_GAME, {0, 1, 60, 0}));
}

// Every minute a game comes and goes, the screen is touched and turned, a service asks: 15
// messages, with what their timers do.
void live_a_day() {
    for (int minute = 0; minute < minutes_a_day; ++minute) {
        enter_game();
        for (int32_t code = DVX_CODE_INTERACTION; code <= DVX_CODE_3RD_ENCODE; ++code)
            tell(make_message("powerhal", code, {minute % 2}));
        tell(make_message("tmr", DVX_CODE_TIMED_MITIGATION, {500}));
        tell(make_message("lowpowermode", 0, {minute % 2, 1 + minute % 3, 1}));
        tell(make_message("powerhal", DVX_CODE_GAME, {0, 0, 60, 0}));
        take_up(make_time_happening(minute_ns));
        simulator_take();
    }
}

// A recording of a game's intervals, as a daemon notes them.
std::string make_recording() {
    std::string text = "{\"dvx_recording\":1,\"order\":\"taken\",\"t\":1}\n";
    int64_t time_ns = 1;
    const auto add = [&](const happening &taken) { text += recording_line_of(taken) + "\n"; };
    happening first;
    first.time_ns = time_ns;
    for (const happening_kind kind :
         {happening_kind::load, happening_kind::start, happening_kind::analyser}) {
        first.kind = kind;
        add(first);
    }
    for (const dvx_message &message :
         {make_text_message("powerhal", DVX_CODE_WINDOW, "com.example"),
          make_message("powerhal", DVX_CODE_GAME, {0, 1, 60, 0})})
        add(make_message_happening(message, time_ns));
    for (int i = 0; i < intervals; ++i, time_ns += steady_us * int64_t{1000})
        add(make_interval_happening(steady_us, time_ns));
    return text;
}

// Millions of intervals a second; each replay in a process of its own.
double replay_rate(const std::string &text) {
    const child_result result = run_in_child([&] {
        const double before = now_ns();
        whole_file content;
        content.text = text;
        recording file = recording_of(std::move(content));
        replay_counts counts;
        replay_exactly(&file, {}, &counts, nullptr, [](const step &) {});
        return std::to_string(static_cast<double>(counts.intervals) / (now_ns() - before) * 1e3);
    });
    return atof(result.output.c_str());
}

// Seconds that the lab takes for its games of ten minutes, and millions of frames a second.
std::pair<double, double> lab_rate() {
    lab_setup setup;
    setup.games = games_read(games_path()).games;
    setup.seeds = 1;
    setup.on.device = device_model_default();
    const double before = now_ns();
    double frames = 0;
    for (const game_result &result : lab_run(setup, lab_run_free(setup)))
        for (const play_result &play : result.plays)
            frames += play.free.frames + play.capped.frames;
    const double took_s = (now_ns() - before) / 1e9;
    return {took_s, frames / took_s / 1e6};
}

// Both start daemons in processes of their own, so before there is one in this.
void measure_replays_and_lab() {
    const auto verdict = [](bool met) { return met ? "met" : "missed"; };
    const auto [lab_s, lab_frames] = lab_rate();
    printf(
        "| twenty games of ten minutes in the lab, one process at a time | %.2f s | | | 2 s | %s "
        "|\n",
        lab_s, verdict(lab_s <= lab_limit_s));
    printf("| the lab's frames | %.1f million a second | | | 3 million | %s |\n", lab_frames,
           verdict(lab_frames >= rate_limit));
    const std::string text = make_recording();
    double replayed = 0;
    for (int round = 0; round < replay_rounds; ++round)
        replayed = std::max(replayed, replay_rate(text));
    printf(
        "| replay, from a recording's text | %.1f million intervals a second | | | 3 million | %s "
        "|\n",
        replayed, verdict(replayed >= rate_limit));
}

}  // namespace

int main() {
    measure_replays_and_lab();
    simulator_setup setup = simulator_fresh_device(device_image_path());
    setup.properties["debug.dvxd_log.enable"] = "0";
    if (simulator_start(setup) != 0)
        return 1;
    enter_game();
    const double direct = median_ns([] {
        for (int i = 0; i < intervals; ++i)
            notify_fia_interval_changed(steady_us);
        simulator_take();
    });
    const happening time = make_time_happening(steady_us * int64_t{1000});
    const happening interval = make_interval_happening(steady_us);
    const double simulated = median_ns([&] {
        for (int i = 0; i < intervals; ++i) {
            take_up(time);
            take_up(interval);
        }
        simulator_take();
    });
    const double day_ms = median_ns(live_a_day) / 1e6;
    const auto verdict = [](bool met) { return met ? "met" : "missed"; };
    printf(
        "| interval through the simulator, with its time | %.1f ns | %.1f ns | %.2f | 3 x interval "
        "| %s |\n",
        simulated / intervals, direct / intervals, simulated / direct,
        verdict(simulated <= interval_limit * direct));
    printf("| a day of 24 hours in the simulator, 18720 messages | %.0f ms | | | 1000 ms | %s |\n",
           day_ms, verdict(day_ms <= day_limit_ms));
    return 0;
}
