#include "tools/scenario/target.h"

#include <string.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <thread>
#include <utility>

#include "device/hardware_conf.h"
#include "device/virtual_device.h"
#include "simulator/simulator.h"
#include "tools/device/delivery.h"
#include "tools/device/device_run.h"
#include "tools/device/frame_play.h"
#include "tools/recording/timeline.h"

namespace {

result failed(const std::string &reason) {
    return {reason.empty() ? failure::none : failure::failed, reason};
}

// ---- in the simulator

void prepare(simulator_setup *setup, const happening &given) {
    switch (given.kind) {
        case happening_kind::property:
            setup->properties[given.name] = given.value;
            break;
        case happening_kind::answer:
            setup->answers[given.name] = given.value;
            break;
        case happening_kind::service:
            setup->services[given.name] = given.state;
            break;
        case happening_kind::missing:
            setup->missing.insert(given.name);
            break;
        case happening_kind::failure:
            if (given.name == "thread")
                setup->refused_threads.insert(given.value);
            if (given.name == "allocation")
                setup->failing_allocation = static_cast<int>(given.count);
            setup->name_taken |= given.name == "socket";
            setup->listen_fails |= given.name == "listen";
            break;
        default:
            break;
    }
}

record ended() {
    record end;
    end.kind = record_kind::end;
    end.time_ns = simulator_now_ns();
    end.text = "status 255";
    return end;
}

// ---- on a virtual device

struct device_life {
    std::string root;
    double speed = 1;
    bool stay = false;
    bool started = false;
    timeline line;
};

std::string take_away(const std::string &root, const std::string &name) {
    const std::string libraries = root + "/vendor/lib64/";
    for (const device_call &call : device_calls_known)
        if (name == call.name && device_hide_symbol(libraries + call.library, name))
            return {};
    std::error_code error;
    return std::filesystem::remove(libraries + name, error) ? "" : "the device has no " + name;
}

result explain_node(int error) {
    return failed(
        error == 0 ? "" : std::string("the daemon does not read its nodes: ") + strerror(-error));
}

result check_daemon_lives(const device_life &life) {
    const bool ended = life.started && device_daemon_process(life.root) == 0;
    return failed(ended ? "the daemon has ended" : "");
}

result play_frames(const device_life &life, const happening &frames) {
    std::vector<int64_t> intervals_us;
    for (int64_t i = 0; i < frames.count; ++i)
        intervals_us.push_back(
            frames.intervals_us[static_cast<size_t>(i) % frames.intervals_us.size()]);
    return explain_node(
        frame_play(life.root, intervals_us, frames.rate * life.speed, nullptr).error);
}

result take_up_on_device(const device_life &life, const happening &given) {
    constexpr char simulator_alone[] = "this happens in the simulator alone";
    result lives = check_daemon_lives(life);
    if (lives.kind != failure::none)
        return lives;
    switch (given.kind) {
        case happening_kind::message: {
            // One that is rejected has happened: what the log says of it may be expected.
            const result told = deliver_message(*given.message, life.root);
            return told.kind == failure::rejected ? result{} : told;
        }
        case happening_kind::time:
            std::this_thread::sleep_for(std::chrono::duration<double, std::nano>(
                static_cast<double>(given.time_ns) / life.speed));
            return check_daemon_lives(life);
        case happening_kind::panel:
            if (given.value != make_panel_happening(panel_is_on(given)).value)
                return failed(simulator_alone);
            return explain_node(deliver_panel(life.root, panel_is_on(given)));
        case happening_kind::frames:
            return play_frames(life, given);
        case happening_kind::property:
            return failed(device_set_property(life.root, given.name, given.value)
                              ? ""
                              : "cannot set " + given.name);
        case happening_kind::answer:
            device_set_answer(life.root, given.name, given.value);
            return {};
        case happening_kind::missing:
            return failed(take_away(life.root, given.name));
        case happening_kind::interval:
        case happening_kind::service:
        case happening_kind::failure:
            return failed(simulator_alone);
        default:
            return {};
    }
}

result start_on_device(device_life *life, const std::vector<happening> &before) {
    result started = failed(device_create(life->root, device_image_path()));
    for (const happening &each : before)
        if (started.kind == failure::none)
            started = take_up_on_device(*life, each);
    int pid = 0;
    life->line = timeline_open(life->root);
    if (started.kind == failure::none)
        started = start_device(life->root, !life->stay, &pid);
    life->started = started.kind == failure::none;
    return started;
}

}  // namespace

target make_simulator_target() {
    const auto ends = std::make_shared<std::vector<record>>();  // of a daemon that did not start
    target simulator;
    simulator.start = [ends](const std::vector<happening> &before) {
        simulator_setup setup = simulator_fresh_device(device_image_path());
        for (const happening &each : before)
            prepare(&setup, each);
        if (simulator_start(setup) != 0)
            ends->push_back(ended());
        return result{};
    };
    simulator.take_up = [](const happening &given) {
        if (given.kind == happening_kind::missing)
            return failed("what is missing is so from the start");
        if (given.kind == happening_kind::failure && given.name != "allocation")
            return failed("this can fail at the start alone");
        take_up(given);
        return result{};
    };
    simulator.records = [ends] {
        std::vector<record> came = simulator_take();
        for (record &end : std::exchange(*ends, {}))
            came.push_back(std::move(end));
        return came;
    };
    simulator.stop = [] {};
    return simulator;
}

target make_device_target(const std::string &root, double speed, bool stay) {
    const auto life = std::make_shared<device_life>();
    life->root = root;
    life->speed = speed;
    life->stay = stay;
    target device;
    device.start = [life](const std::vector<happening> &before) {
        return start_on_device(life.get(), before);
    };
    device.take_up = [life](const happening &given) { return take_up_on_device(*life, given); };
    device.records = [life] { return timeline_read(&life->line); };
    device.stop = [life] {
        if (!life->stay)
            static_cast<void>(stop_device(life->root));  // it may have ended already
    };
    device.patience_ms = 10000;
    return device;
}
