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

void simulator_message(const dvx_message &message) {
    run_on("client_listener", [&] { dispatch_message(&message); });
}

void simulator_panel_report(const std::string &report) {
    run_on("kevent_monitor", [&] { cb_notify_panel_power_states(as_read(report).c_str()); });
}

void simulator_interval_report(const std::string &report) {
    run_on("kevent_monitor", [&] { cb_notify_fbcn_interval(as_read(report).c_str()); });
}

void simulator_interval(int32_t interval_us) {
    run_on("kevent_monitor", [&] { notify_fia_interval_changed(interval_us); });
}

void simulator_set_property(const std::string &name, const std::string &value) {
    simulated.setup.properties[name] = value;
}

void simulator_set_answer(const std::string &name, const std::string &value) {
    simulated.setup.answers[name] = value;
}

void simulator_set_service(const std::string &socket, simulated_service state) {
    simulated.setup.services[socket] = state;
}

void simulator_advance_ns(int64_t duration_ns) {
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

void simulator_replay_from(const simulator_setup &setup, int64_t first_ns) {
    simulated.setup = setup;
    simulated.replaying = true;
    simulated.start_ns = simulated.now_ns = first_ns;
}

int simulator_replay(const recorded_happening &what) {
    simulated.now_ns = simulated.happening_ns = what.time_ns;
    simulated.answers = &what.answers;
    simulated.next_answer = 0;
    simulated.questions = 0;
    int result = 0;
    switch (what.kind) {
        case recorded_load:
            run_on("dvxd", [] { prepare_daemon(); });
            break;
        case recorded_start:
            run_on("dvxd", [&] { result = start_daemon(); });
            break;
        case recorded_analyser:
            run_on("fia", start_analyser);
            break;
        case recorded_message:
            simulator_message(what.message);
            break;
        case recorded_panel:
            simulator_panel_report(what.report);
            break;
        case recorded_interval:
            simulator_interval_report(what.report);
            break;
        case recorded_timers:
            run_on("timer", [] { check_expired_work(); });
            break;
        case recorded_thermal:
            run_on("thermal_check", replay_thermal_poll);
            break;
    }
    simulated.answers = nullptr;
    return result;
}

void simulator_replay_interval(int64_t time_ns, int32_t interval_us) {
    simulated.now_ns = time_ns;
    simulator_interval(interval_us);
}

const recorded_answer *take_answer(recorded_answer_kind kind) {
    if (simulated.answers == nullptr)
        return nullptr;
    const int question = simulated.questions++;
    if (simulated.next_answer >= simulated.answers->size())
        return nullptr;
    const recorded_answer &next = (*simulated.answers)[simulated.next_answer];
    if (next.question != question)
        return nullptr;
    ++simulated.next_answer;
    return next.kind == kind ? &next : nullptr;
}

int64_t simulator_now_ns(void) {
    return simulated.now_ns - simulated.start_ns;
}

std::vector<simulator_record> simulator_take(void) {
    return std::exchange(simulated.records, {});
}

void add_record(record_kind kind, const std::string &text) {
    simulated.records.push_back(
        {simulated.now_ns - simulated.start_ns, kind, turns_thread(), 0, "", text});
}
