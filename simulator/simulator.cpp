#include "simulator/simulator.h"

#include <algorithm>
#include <utility>

#include "core/start/start_steps.h"
#include "core/timer.h"
#include "fia/interval_decision.h"
#include "fia/lifecycle.h"
#include "ipc/client_server.h"
#include "ipc/kernel_event_monitor.h"
#include "platform/host/turns.h"
#include "resource/thermal_engine.h"
#include "simulator/allocation.h"
#include "simulator/state.h"

simulator_state simulated;

namespace {

constexpr int64_t us_ns = 1000;
constexpr int64_t ms_ns = 1000000;
constexpr int64_t second_ns = 1000000000;
constexpr int64_t boot_ns = 1000 * second_ns;  // the clock of a device that has been up for a while
constexpr int64_t never_ns = INT64_MAX;
constexpr int poll_max = 300;  // of the thermal engine

struct thermal_polls {
    thermal_poll poll = {};
    int64_t next_ns = never_ns;
    int left = 0;
};

thermal_polls thermal;

// Runs what a thread of the daemon does in one step, and what other threads do of it.
template <typename operation>
void run_on(const char *thread, operation step) {
    turns_set_thread(thread);
    step();
    turns_let_other_run();
}

void run_thermal_poll() {
    const bool found = poll_thermal_engine(&thermal.poll);
    thermal.next_ns = found || --thermal.left == 0 ? never_ns : thermal.next_ns + second_ns;
}

// When the timer thread has something to do; a timer that was due already is so now.
int64_t next_timer_ns() {
    const int64_t end_ms = timer_next_end_ms();
    if (end_ms > INT64_MAX / ms_ns)
        return never_ns;
    return std::max(end_ms * ms_ns, simulated.now_ns);
}

// What the monitor reads of a report.
std::string as_read(const std::string &report) {
    return report.substr(0, kernel_report_size - 1);
}

// The check thread's first step. It runs before main on a device; nobody hears of it until there is
// an event manager.
void start_thermal_polls() {
    if (!simulated.threads.contains("thermal_check"))
        return;
    thermal = {begin_thermal_polls(), simulated.now_ns, poll_max};
    run_thermal_poll();
}

void replay_thermal_poll() {
    if (thermal.left == 0)
        thermal = {begin_thermal_polls(), never_ns, poll_max};
    poll_thermal_engine(&thermal.poll);
}

void start_analyser() {
    if (fia_start_analyser() != 0)
        fia_stop_analyser();
}

void take_interval(const happening &interval) {
    if (interval.interval_us)
        run_on("kevent_monitor", [&] { notify_fia_interval_changed(*interval.interval_us); });
    else
        run_on("kevent_monitor", [&] { cb_notify_fbcn_interval(as_read(interval.value).c_str()); });
}

void pass_time(int64_t duration_ns) {
    const int64_t end_ns = simulated.now_ns + duration_ns;
    for (;;) {
        const int64_t timer_ns = next_timer_ns();
        const int64_t next_ns = std::min(timer_ns, thermal.next_ns);
        if (next_ns > end_ns)
            break;
        simulated.now_ns = std::max(next_ns, simulated.now_ns);
        if (timer_ns <= thermal.next_ns)
            run_on("timer", [] { check_expired_work(); });
        else
            run_on("thermal_check", run_thermal_poll);
    }
    simulated.now_ns = std::max(end_ns, simulated.now_ns);
}

void let_frames_come(const happening &frames) {
    happening interval;
    interval.kind = happening_kind::interval;
    for (int64_t i = 0; i < frames.count; ++i) {
        const int32_t interval_us =
            frames.intervals_us[static_cast<size_t>(i) % frames.intervals_us.size()];
        interval.interval_us = interval_us;
        pass_time(std::max<int64_t>(interval_us, 0) * us_ns);
        take_interval(interval);
    }
}

// What happens to a daemon and around it; its threads' own steps come with time.
int let_happen(const happening &given) {
    switch (given.kind) {
        case happening_kind::message:
            run_on("client_listener", [&] { dispatch_message(given.message.get()); });
            break;
        case happening_kind::panel:
            run_on("kevent_monitor",
                   [&] { cb_notify_panel_power_states(as_read(given.value).c_str()); });
            break;
        case happening_kind::interval:
            take_interval(given);
            break;
        case happening_kind::frames:
            let_frames_come(given);
            break;
        case happening_kind::time:
            pass_time(given.time_ns);
            break;
        case happening_kind::property:
            simulated.setup.properties[given.name] = given.value;
            break;
        case happening_kind::answer:
            simulated.setup.answers[given.name] = given.value;
            break;
        case happening_kind::service:
            simulated.setup.services[given.name] = given.state;
            break;
        case happening_kind::failure:
            fail_allocation_after(static_cast<int>(given.count) - 1);
            break;
        default:
            break;
    }
    return 0;
}

// What was recorded, on its thread.
int replay(const happening &given) {
    int result = 0;
    switch (given.kind) {
        case happening_kind::load:
            run_on("dvxd", [] { prepare_daemon(); });
            break;
        case happening_kind::start:
            run_on("dvxd", [&] { result = start_daemon(); });
            break;
        case happening_kind::analyser:
            run_on("fia", start_analyser);
            break;
        case happening_kind::timers:
            run_on("timer", [] { check_expired_work(); });
            break;
        case happening_kind::thermal:
            run_on("thermal_check", replay_thermal_poll);
            break;
        default:
            result = let_happen(given);
            break;
    }
    return result;
}

}  // namespace

simulator_setup simulator_fresh_device(const std::string &image) {
    simulator_setup setup;
    setup.image = image;
    setup.properties = {{"debug.dvxd_log.enable", "1"},
                        {"ro.vendor.extension_library", "/vendor/lib64/libqcopt.so"}};
    setup.answers = {{"get_num_of_thermal_config_desc", "12"},
                     {"init_white_list", "1"},
                     {"perf_lock_use_profile", "1"}};
    return setup;
}

int simulator_start(const simulator_setup &setup) {
    simulated.setup = setup;
    simulated.start_ns = simulated.now_ns = boot_ns;
    fail_allocation_after(setup.failing_allocation - 1);
    int result = 0;
    run_on("dvxd", [&] {
        prepare_daemon();
        result = start_daemon();
    });
    if (result != 0)
        return -1;
    run_on("thermal_check", start_thermal_polls);
    return 0;
}

void simulator_replay_from(const simulator_setup &setup, int64_t first_ns) {
    simulated.setup = setup;
    simulated.replaying = true;
    simulated.start_ns = simulated.now_ns = first_ns;
}

int take_up(const happening &given) {
    if (!simulated.replaying)
        return let_happen(given);
    simulated.now_ns = simulated.happening_ns = given.time_ns;
    simulated.answers = &given.answers;
    simulated.next_answer = 0;
    simulated.questions = 0;
    const int result = replay(given);
    simulated.answers = nullptr;
    return result;
}

const platform_answer *take_answer(answer_kind kind) {
    if (simulated.answers == nullptr)
        return nullptr;
    const int question = simulated.questions++;
    if (simulated.next_answer >= simulated.answers->size())
        return nullptr;
    const platform_answer &next = (*simulated.answers)[simulated.next_answer];
    if (next.question != question)
        return nullptr;
    ++simulated.next_answer;
    return next.kind == kind ? &next : nullptr;
}

int64_t simulator_now_ns(void) {
    return simulated.now_ns - simulated.start_ns;
}

std::vector<record> simulator_take(void) {
    return std::exchange(simulated.records, {});
}

void add_record(record came) {
    came.thread_name = turns_thread();
    simulated.records.push_back(std::move(came));
}

int64_t record_time_ns() {
    return simulated.now_ns - simulated.start_ns;
}
