#include "tools/simulated/replay.h"

#include <algorithm>
#include <charconv>

#include "device/virtual_device.h"
#include "tools/recording/messages.h"
#include "tools/simulated/simulated.h"

namespace {

// The happening that has been taken up, with what it brought about then and now.
struct taken_step {
    size_t line = 0;
    int64_t time_ns = 0;
    recording_line what;
    std::vector<timeline_entry> recorded;
    std::vector<timeline_entry> replayed;
};

std::string describe_happening(const recording_line &line) {
    constexpr const char *words[] = {"before main",
                                     "start-up",
                                     "the analyser's start",
                                     "",
                                     "",
                                     "",
                                     "timers",
                                     "a poll of the thermal engine"};
    static_assert(std::size(words) == recorded_kinds);
    if (line.kind == recording_interval)
        return "interval of " + std::to_string(line.interval_us) + " us";
    switch (line.what.kind) {
        case recorded_message:
            return describe_message(line.what.message, line.is_text);
        case recorded_panel:
        case recorded_interval:
            return "report '" + line.what.report + "'";
        default:
            return words[line.what.kind];
    }
}

// A text without the directory of the device that it comes from.
std::string without_root(const std::string &text, const std::string &root) {
    std::string plain = text;
    for (size_t at = root.empty() ? std::string::npos : plain.find(root + "/");
         at != std::string::npos; at = plain.find(root + "/", at))
        plain.erase(at, root.size());
    return plain;
}

bool is_same(const timeline_entry &recorded, const timeline_entry &replayed,
             const std::string &root) {
    return recorded.kind == replayed.kind && recorded.thread_name == replayed.thread_name &&
           (recorded.text == replayed.text || without_root(recorded.text, root) == replayed.text);
}

std::vector<std::string> describe(const std::vector<timeline_entry> &entries) {
    std::vector<std::string> said;
    for (const timeline_entry &entry : entries) {
        said.push_back(std::string(timeline_kind_name(entry.kind)) + "  " + entry.text + "  [" +
                       entry.thread_name + "]");
    }
    return said;
}

// Whether the step came out as recorded; the difference where not.
bool compare_step(const taken_step &step, const std::string &root, replay_difference *difference) {
    if (std::equal(
            step.recorded.begin(), step.recorded.end(), step.replayed.begin(), step.replayed.end(),
            [&](const timeline_entry &a, const timeline_entry &b) { return is_same(a, b, root); }))
        return true;
    *difference = {true,
                   step.line,
                   step.time_ns,
                   describe_happening(step.what),
                   describe(step.recorded),
                   describe(step.replayed)};
    return false;
}

int take_up(const recording_line &line, replay_counts *counts) {
    ++counts->happenings;
    if (line.kind == recording_interval) {
        ++counts->intervals;
        simulator_replay_interval(line.time_ns, line.interval_us);
        return 0;
    }
    counts->messages += line.what.kind == recorded_message ? 1 : 0;
    counts->intervals += line.what.kind == recorded_interval ? 1 : 0;
    return simulator_replay(line.what);
}

void give(taken_step *step, const std::function<void(const moment &now)> &sink) {
    if (step->replayed.empty())
        return;
    const recording_line &what = step->what;
    const recorded_kind kind = what.kind == recording_interval ? recorded_interval : what.what.kind;
    moment now;
    now.kind = moment_kind_of(kind);
    now.time_ns = step->time_ns;
    now.message = what.what.message;
    now.is_text = what.is_text;
    now.on = what.what.report == "panel_power_on = 1\n";
    now.interval_us = what.interval_us;
    for (timeline_entry &entry : step->replayed)
        moment_add(&now, std::move(entry));
    sink(now);
}

}  // namespace

std::string replay_taken(recording *file, const simulated_figures &figures, replay_counts *counts,
                         replay_difference *difference,
                         const std::function<void(const moment &now)> &sink) {
    simulator_setup setup;
    setup.image = device_image_path();
    setup.figures = figures;
    setup.properties = file->header.properties;
    setup.answers = file->header.answers;
    recording_line line;
    taken_step step;
    int64_t first_ns = 0;
    bool comparing = difference != nullptr;
    const auto finish_step = [&] {
        counts->records += step.replayed.size();
        const bool same = !comparing || compare_step(step, file->header.root, difference);
        give(&step, sink);
        step.recorded.clear();
        step.replayed.clear();
        return same;
    };
    while (recording_next(file, &line)) {
        if (line.kind == recording_output) {
            if (comparing && !line.aside && !line.came.text.empty())
                step.recorded.push_back(line.came);
            continue;
        }
        if ((!step.recorded.empty() || !step.replayed.empty()) && !finish_step())
            return {};
        if (first_ns == 0) {
            first_ns = line.time_ns;
            simulator_replay_from(setup, first_ns);
        }
        step.line = line.number;
        step.time_ns = line.time_ns - first_ns;
        counts->duration_ns = step.time_ns;
        const int result = take_up(line, counts);
        step.replayed = take_simulated();
        if (line.kind == recording_happening)
            step.what = line;
        step.what.kind = line.kind;
        step.what.interval_us = line.interval_us;
        if (result != 0)
            break;
    }
    // What came of the last happening of a recording that was cut off is not all there.
    if (!file->remarks.empty())
        comparing = false;
    finish_step();
    return file->error;
}
