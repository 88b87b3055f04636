#include "tools/simulated/stimulus.h"

#include <errno.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

#include "device/virtual_device.h"
#include "tools/recording/messages.h"
#include "tools/simulated/log_stimulus.h"

namespace {

constexpr int64_t us_ns = 1000;
constexpr int64_t second_ns = 1000000000;
constexpr double interval_max_us = 1e9;

happening make_change(happening_kind kind, int64_t time_ns, const std::string &name,
                      const std::string &value) {
    happening change;
    change.kind = kind;
    change.time_ns = time_ns;
    change.name = name;
    change.value = value;
    return change;
}

// A recording while it becomes a stimulus.
struct builder {
    stimulus made;
    bool started = false;              // a message has come
    std::vector<std::string> failing;  // services, until the next happening
    std::set<std::string> in_vain;     // looked for, and not there
};

// What the platform answered at the start is what the device is like; later, what it has become.
void add_answer(builder *built, const platform_answer &answer, int64_t time_ns) {
    simulator_setup *setup = &built->made.setup;
    std::vector<happening> *happenings = &built->made.happenings;
    const bool has_value = answer.kind == answer_kind::property || answer.number != 0;
    switch (answer.kind) {
        case answer_kind::property:
        case answer_kind::library: {
            const bool is_property = answer.kind == answer_kind::property;
            if (built->started)
                happenings->push_back(
                    make_change(is_property ? happening_kind::property : happening_kind::answer,
                                time_ns, answer.name, has_value ? answer.value : "0"));
            else if (has_value)
                (is_property ? setup->properties : setup->answers)[answer.name] = answer.value;
            else
                setup->answers.erase(answer.name);
            break;
        }
        case answer_kind::connect:
            happenings->push_back(make_change(happening_kind::service, time_ns, answer.name, ""));
            happenings->back().state =
                answer.number == EAGAIN ? service_state::hung : service_state::down;
            built->failing.push_back(answer.name);
            break;
        case answer_kind::missing:
            built->in_vain.insert(answer.name);
            break;
        default:
            break;
    }
}

// Services that failed while a happening was taken up answer the next one.
void restore_services(builder *built, int64_t time_ns) {
    for (const std::string &service : std::exchange(built->failing, {}))
        built->made.happenings.push_back(
            make_change(happening_kind::service, time_ns, service, ""));
}

void add_happening(builder *built, const happening &taken, int64_t time_ns) {
    for (const platform_answer &answer : taken.answers)
        add_answer(built, answer, time_ns);
    if (taken.kind != happening_kind::message && taken.kind != happening_kind::panel &&
        taken.kind != happening_kind::interval)
        return;
    built->started |= taken.kind == happening_kind::message;
    built->made.happenings.push_back(taken);
    built->made.happenings.back().time_ns = time_ns;
    built->made.happenings.back().answers.clear();
    restore_services(built, time_ns);
}

// Of what was looked for in vain: a library that one of two folders lacks is in the other.
void add_missing(builder *built) {
    constexpr char one[] = "/vendor/lib/";
    for (const std::string &path : built->in_vain) {
        const std::string name = path.substr(path.rfind('/') + 1);
        if (!path.starts_with(one) || built->in_vain.contains("/vendor/lib64/" + name))
            built->made.setup.missing.insert(name);
    }
}

// Puts what the log tells beside what was seen of the nodes; a panel that was seen is not told.
void add_told(stimulus *made, const stimulus &told, bool panel_seen) {
    for (const happening &each : told.happenings)
        if (each.kind != happening_kind::panel || !panel_seen)
            made->happenings.push_back(each);
    made->remarks.insert(made->remarks.end(), told.remarks.begin(), told.remarks.end());
    std::stable_sort(made->happenings.begin(), made->happenings.end(),
                     [](const happening &a, const happening &b) { return a.time_ns < b.time_ns; });
}

}  // namespace

stimulus stimulus_of_recording(recording *file) {
    builder built;
    std::vector<record> said;
    bool panel_seen = false;
    built.made.setup = simulator_fresh_device(device_image_path());
    if (file->header.taken) {
        built.made.setup.properties = file->header.properties;
        built.made.setup.answers = file->header.answers;
    }
    int64_t start_ns = 0;
    recording_line line;
    while (recording_next(file, &line)) {
        if (start_ns == 0)
            start_ns = line.time_ns;
        const int64_t time_ns = line.time_ns - start_ns;
        built.made.end_ns = std::max(built.made.end_ns, time_ns);
        if (!line.is_happening) {
            if (!file->header.taken && !built.started &&
                (line.came.kind == record_kind::event || line.came.kind == record_kind::log))
                said.push_back(line.came);
            continue;
        }
        panel_seen |= line.taken.kind == happening_kind::panel;
        add_happening(&built, line.taken, time_ns);
    }
    add_missing(&built);
    built.made.error = file->error;
    built.made.remarks = file->remarks;
    if (!file->header.taken && !built.started)
        add_told(&built.made, stimulus_of_log(said, start_ns), panel_seen);
    return built.made;
}

stimulus stimulus_of_intervals(const std::vector<double> &intervals_us) {
    stimulus made;
    made.setup = simulator_fresh_device(device_image_path());
    for (const dvx_message &message :
         {make_text_message(DVX_CLIENT_POWERHAL, DVX_CODE_ACTIVITY, "game/.Game"),
          make_text_message(DVX_CLIENT_POWERHAL, DVX_CODE_WINDOW, "game"),
          make_message(DVX_CLIENT_POWERHAL, DVX_CODE_GAME, {0, 1, 60, 0})})
        made.happenings.push_back(make_message_happening(message, second_ns));
    double time_ns = static_cast<double>(2 * second_ns);
    for (const double interval_us : intervals_us) {
        const double taken_us = std::clamp(interval_us, 0.0, interval_max_us);
        time_ns += taken_us * us_ns;
        made.happenings.push_back(make_interval_happening(
            static_cast<int32_t>(std::lround(taken_us)), static_cast<int64_t>(time_ns)));
    }
    made.end_ns = static_cast<int64_t>(time_ns);
    return made;
}

std::string stimulus_play(const stimulus &given, const step_taker &sink) {
    // Timers that run before a happening have steps of their own.
    happening timers;
    timers.kind = happening_kind::timers;
    const auto pour = [&](const happening &taken) {
        step came = {taken, 0, "", simulator_take()};
        if (came.records.empty())
            return;
        came.time_ns = came.records.front().time_ns;
        sink(came);
    };
    const auto pass_time = [&](int64_t until_ns) {
        take_up(make_time_happening(std::max<int64_t>(until_ns - simulator_now_ns(), 0)));
        pour(timers);
    };
    happening start;
    start.kind = happening_kind::start;
    if (simulator_start(given.setup) != 0)
        return "the daemon does not start on this device";
    pour(start);
    for (const happening &each : given.happenings) {
        pass_time(each.time_ns);
        take_up(each);
        pour(each);
    }
    pass_time(given.end_ns);
    return {};
}
