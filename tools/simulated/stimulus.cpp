#include "tools/simulated/course.h"

#include <errno.h>

#include <algorithm>
#include <cmath>

#include "device/virtual_device.h"
#include "tools/recording/messages.h"
#include "tools/simulated/simulated.h"

namespace {

constexpr int64_t us_ns = 1000;
constexpr int64_t second_ns = 1000000000;
constexpr double interval_max_us = 1e9;

// What the platform answered at the start is what the device is like; later, what it has become.
void add_answers(course *what, const recorded_happening &taken, int64_t time_ns, bool at_start) {
    for (const recorded_answer &answer : taken.answers) {
        course_step step;
        step.time_ns = time_ns;
        step.name = answer.name;
        step.value = answer.value;
        step.number = static_cast<int32_t>(answer.number);
        if (answer.kind == answer_property && at_start)
            what->setup.properties[answer.name] = answer.value;
        else if (answer.kind == answer_library && at_start && answer.number != 0)
            what->setup.answers[answer.name] = answer.value;
        else if (answer.kind == answer_property || answer.kind == answer_library ||
                 answer.kind == answer_connect) {
            step.kind = answer.kind == answer_property  ? course_property
                        : answer.kind == answer_library ? course_answer
                                                        : course_connect;
            what->steps.push_back(step);
        }
    }
}

void add_happening(course *what, const recording_line &line, int64_t time_ns) {
    course_step step;
    step.time_ns = time_ns;
    step.value = line.what.report;
    switch (line.what.kind) {
        case recorded_message:
            course_add_message(what, time_ns, line.what.message);
            break;
        case recorded_panel:
            step.kind = course_panel;
            what->steps.push_back(step);
            break;
        case recorded_interval:
            step.kind = course_report;
            what->steps.push_back(step);
            break;
        default:
            break;
    }
}

void add_interval(course *what, int64_t time_ns, int32_t interval_us) {
    course_step step;
    step.time_ns = time_ns;
    step.number = interval_us;
    what->steps.push_back(step);
}

// Of what was looked for in vain: a library that one of two folders lacks is in the other.
void add_missing(course *what, const std::set<std::string> &in_vain) {
    constexpr char one[] = "/vendor/lib/";
    for (const std::string &path : in_vain) {
        const std::string name = path.substr(path.rfind('/') + 1);
        if (!path.starts_with(one) || in_vain.contains("/vendor/lib64/" + name))
            what->setup.missing.insert(name);
    }
}

void play_step(const course &what, const course_step &step) {
    switch (step.kind) {
        case course_interval:
            simulator_interval(step.number);
            break;
        case course_report:
            simulator_interval_report(step.value);
            break;
        case course_message:
            simulator_message(what.messages[step.message]);
            break;
        case course_panel:
            simulator_panel_report(step.value);
            break;
        case course_property:
            simulator_set_property(step.name, step.value);
            break;
        case course_answer:
            simulator_set_answer(step.name, step.number != 0 ? step.value : "0");
            break;
        case course_connect:
            simulator_set_service(step.name, step.number == EAGAIN ? service_hung : service_down);
            break;
    }
}

moment moment_of_step(const course &what, const course_step &step) {
    constexpr moment_kind kinds[] = {moment_interval, moment_interval, moment_message, moment_panel,
                                     moment_unknown,  moment_unknown,  moment_unknown};
    moment now;
    now.kind = kinds[step.kind];
    now.interval_us = step.number;
    now.on = step.value == "panel_power_on = 1\n";
    if (step.kind == course_message)
        now.message = what.messages[step.message];
    return now;
}

// Puts what the log tells beside what was seen of the nodes; a panel that was seen is not told.
void add_told(course *what, course told, bool panel_seen) {
    for (course_step &step : told.steps) {
        if (step.kind == course_panel && panel_seen)
            continue;
        step.message += what->messages.size();
        what->steps.push_back(step);
    }
    what->messages.insert(what->messages.end(), told.messages.begin(), told.messages.end());
    what->remarks.insert(what->remarks.end(), told.remarks.begin(), told.remarks.end());
    std::stable_sort(
        what->steps.begin(), what->steps.end(),
        [](const course_step &a, const course_step &b) { return a.time_ns < b.time_ns; });
}

}  // namespace

void course_add_message(course *what, int64_t time_ns, const dvx_message &message) {
    course_step step;
    step.time_ns = time_ns;
    step.kind = course_message;
    step.message = what->messages.size();
    what->messages.push_back(message);
    what->steps.push_back(step);
}

course course_of_recording(recording *file) {
    course what;
    std::vector<timeline_entry> said;
    bool panel_seen = false;
    what.setup = simulator_fresh_device(device_image_path());
    if (file->header.taken) {
        what.setup.properties = file->header.properties;
        what.setup.answers = file->header.answers;
    }
    std::set<std::string> in_vain;
    int64_t start_ns = 0;
    recording_line line;
    while (recording_next(file, &line)) {
        if (start_ns == 0)
            start_ns = line.time_ns;
        const int64_t time_ns = line.time_ns - start_ns;
        what.end_ns = std::max(what.end_ns, time_ns);
        if (line.kind == recording_interval)
            add_interval(&what, time_ns, line.interval_us);
        if (line.kind == recording_output && line.came.kind <= timeline_log)
            said.push_back(line.came);
        if (line.kind != recording_happening)
            continue;
        panel_seen |= line.what.kind == recorded_panel;
        for (const recorded_answer &answer : line.what.answers)
            if (answer.kind == answer_missing)
                in_vain.insert(answer.name);
        add_answers(&what, line.what, time_ns, what.messages.empty());
        add_happening(&what, line, time_ns);
    }
    add_missing(&what, in_vain);
    what.error = file->error;
    what.remarks = file->remarks;
    if (!file->header.taken && what.messages.empty())
        add_told(&what, course_of_log(said, start_ns), panel_seen);
    return what;
}

course course_of_intervals(const std::vector<double> &intervals_us) {
    course what;
    what.setup = simulator_fresh_device(device_image_path());
    course_add_message(&what, second_ns,
                       make_text_message("powerhal", DVX_CODE_ACTIVITY, "game/.Game"));
    course_add_message(&what, second_ns, make_text_message("powerhal", DVX_CODE_WINDOW, "game"));
    course_add_message(&what, second_ns, make_message("powerhal", DVX_CODE_GAME, {0, 1, 60, 0}));
    double time_ns = static_cast<double>(2 * second_ns);
    for (const double interval_us : intervals_us) {
        const double taken_us = std::clamp(interval_us, 0.0, interval_max_us);
        time_ns += taken_us * us_ns;
        add_interval(&what, static_cast<int64_t>(time_ns),
                     static_cast<int32_t>(std::lround(taken_us)));
    }
    what.end_ns = static_cast<int64_t>(time_ns);
    return what;
}

std::string course_play(const course &what, const std::function<void(const moment &now)> &sink) {
    // Timers that run before a step have moments of their own.
    const auto pour = [&](moment now) {
        for (timeline_entry &entry : take_simulated()) {
            if (now.came.empty())
                now.time_ns = entry.time_ns;
            moment_add(&now, std::move(entry));
        }
        if (!now.came.empty())
            sink(now);
    };
    moment start;
    start.kind = moment_start;
    if (simulator_start(what.setup) != 0)
        return "the daemon does not start on this device";
    pour(start);
    moment timers;
    timers.kind = moment_timers;
    std::vector<std::string> failing;
    for (const course_step &step : what.steps) {
        simulator_advance_ns(std::max<int64_t>(step.time_ns - simulator_now_ns(), 0));
        pour(timers);
        play_step(what, step);
        pour(moment_of_step(what, step));
        if (step.kind == course_connect) {
            failing.push_back(step.name);
            continue;
        }
        for (const std::string &service : failing)
            simulator_set_service(service, service_up);
        failing.clear();
    }
    simulator_advance_ns(std::max<int64_t>(what.end_ns - simulator_now_ns(), 0));
    pour(timers);
    return {};
}
