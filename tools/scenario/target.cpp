#include "tools/scenario/players.h"

#include <string.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <thread>

#include "device/hardware_conf.h"
#include "device/virtual_device.h"
#include "simulator/allocation.h"
#include "simulator/simulator.h"
#include "tools/device/delivery.h"
#include "tools/device/device_run.h"
#include "tools/device/frame_play.h"
#include "tools/simulated/simulated.h"

namespace {

constexpr int64_t ms_ns = 1000000;

// ---- in the simulator

simulated_service service_state(const std::string &word) {
    return word == "up" ? service_up : word == "down" ? service_down : service_hung;
}

void prepare(simulator_setup *setup, const happening &what) {
    switch (what.kind) {
        case happening_property:
            setup->properties[what.name] = what.value;
            break;
        case happening_answer:
            setup->answers[what.name] = what.value;
            break;
        case happening_service:
            setup->services[what.name] = service_state(what.value);
            break;
        case happening_missing:
            setup->missing.insert(what.name);
            break;
        case happening_failure:
            if (what.name == "thread")
                setup->refused_threads.insert(what.value);
            if (what.name == "allocation")
                setup->failing_allocation = static_cast<int>(what.number);
            setup->name_taken |= what.name == "socket";
            setup->listen_fails |= what.name == "listen";
            break;
        default:
            break;
    }
}

timeline_entry ended() {
    return {simulator_now_ns(), timeline_end, 0, "status 255", "", 0};
}

std::vector<timeline_entry> ends;

std::string start_simulator(const std::vector<happening> &before) {
    simulator_setup setup = simulator_fresh_device(device_image_path());
    for (const happening &what : before)
        prepare(&setup, what);
    if (simulator_start(setup) != 0)
        ends.push_back(ended());
    return {};
}

std::string play_simulated(const happening &what) {
    switch (what.kind) {
        case happening_message:
            simulator_message(what.message);
            break;
        case happening_time:
            simulator_advance_ns(what.number * ms_ns);
            break;
        case happening_panel:
            simulator_panel_report(what.on ? "panel_power_on = 1\n" : "panel_power_on = 0\n");
            break;
        case happening_frames:
            for (int64_t i = 0; i < what.number; ++i) {
                const int64_t interval_us =
                    what.intervals_us[static_cast<size_t>(i) % what.intervals_us.size()];
                simulator_advance_ns(std::max<int64_t>(interval_us, 0) * 1000);
                simulator_interval(static_cast<int32_t>(interval_us));
            }
            break;
        case happening_report:
            if (what.name == "panel")
                simulator_panel_report(what.value);
            else
                simulator_interval_report(what.value);
            break;
        case happening_property:
            simulator_set_property(what.name, what.value);
            break;
        case happening_answer:
            simulator_set_answer(what.name, what.value);
            break;
        case happening_service:
            simulator_set_service(what.name, service_state(what.value));
            break;
        case happening_missing:
            return "what is missing is so from the start";
        case happening_failure:
            if (what.name != "allocation")
                return "this can fail at the start alone";
            fail_allocation_after(static_cast<int>(what.number) - 1);
            break;
        default:
            break;
    }
    return {};
}

std::vector<timeline_entry> take_from_simulator() {
    std::vector<timeline_entry> entries = take_simulated();
    entries.insert(entries.end(), ends.begin(), ends.end());
    ends.clear();
    return entries;
}

// ---- on a virtual device

struct played_device {
    std::string root;
    double speed = 1;
    bool stay = false;
    bool started = false;
    timeline line;
};

played_device device;

std::string take_away(const std::string &name) {
    const std::string libraries = device.root + "/vendor/lib64/";
    for (const device_call &call : device_calls_known)
        if (name == call.name && device_hide_symbol(libraries + call.library, name))
            return {};
    std::error_code error;
    return std::filesystem::remove(libraries + name, error) ? "" : "the device has no " + name;
}

std::string play_on_device(const happening &what);

std::string start_on_device(const std::vector<happening> &before) {
    std::string error = device_create(device.root, device_image_path());
    for (const happening &what : before)
        if (error.empty())
            error = play_on_device(what);
    int pid = 0;
    device.line = timeline_open(device.root);
    if (error.empty())
        error = start_device(device.root, !device.stay, &pid).reason;
    device.started = error.empty();
    return error;
}

std::string explain_node(int error) {
    return error == 0 ? "" : std::string("the daemon does not read its nodes: ") + strerror(-error);
}

// A message that is rejected has happened: what the log says of it may be expected.
std::string tell_device(const happening &what) {
    const result told = deliver_message(what.message, what.is_text, device.root);
    return told.kind == failure::rejected ? "" : told.reason;
}

std::string check_daemon_lives() {
    return device.started && device_daemon_process(device.root) == 0 ? "the daemon has ended" : "";
}

std::string play_on_device(const happening &what) {
    std::string ended = check_daemon_lives();
    if (!ended.empty())
        return ended;
    switch (what.kind) {
        case happening_message:
            return tell_device(what);
        case happening_time:
            std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(
                static_cast<double>(what.number) / device.speed));
            return check_daemon_lives();
        case happening_panel:
            return explain_node(deliver_panel(device.root, what.on));
        case happening_frames: {
            std::vector<int64_t> intervals_us;
            for (int64_t i = 0; i < what.number; ++i)
                intervals_us.push_back(
                    what.intervals_us[static_cast<size_t>(i) % what.intervals_us.size()]);
            return explain_node(
                frame_play(device.root, intervals_us, what.rate * device.speed, nullptr).error);
        }
        case happening_property:
            return device_set_property(device.root, what.name, what.value)
                       ? ""
                       : "cannot set " + what.name;
        case happening_answer:
            device_set_answer(device.root, what.name, what.value);
            return {};
        case happening_missing:
            return take_away(what.name);
        case happening_report:
        case happening_service:
        case happening_failure:
            return "this happens in the simulator alone";
        default:
            return {};
    }
}

std::vector<timeline_entry> take_from_device() {
    return timeline_read(&device.line);
}

void stop_on_device() {
    if (!device.stay)
        static_cast<void>(stop_device(device.root));  // it may have ended already
}

}  // namespace

player make_simulator_player() {
    return {start_simulator, play_simulated, take_from_simulator, [] {}, 0};
}

player make_device_player(const std::string &root, double speed, bool stay) {
    constexpr int patience_ms = 10000;
    device.root = root;
    device.speed = speed;
    device.stay = stay;
    return {start_on_device, play_on_device, take_from_device, stop_on_device, patience_ms};
}
