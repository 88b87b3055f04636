#include "tools/simulated/replay.h"

#include <algorithm>
#include <utility>

#include "device/virtual_device.h"

namespace {

// The happening that has been taken up, with what it brought about then and now.
struct replayed_step {
    size_t line = 0;
    step replayed;
    std::vector<record> recorded;
};

// A text without the directory of the device that it comes from.
std::string without_root(const std::string &text, const std::string &root) {
    std::string plain = text;
    for (size_t at = root.empty() ? std::string::npos : plain.find(root + "/");
         at != std::string::npos; at = plain.find(root + "/", at))
        plain.erase(at, root.size());
    return plain;
}

bool is_same(const record &recorded, const record &replayed, const std::string &root) {
    return recorded.kind == replayed.kind && recorded.thread_name == replayed.thread_name &&
           (recorded.text == replayed.text || without_root(recorded.text, root) == replayed.text);
}

std::vector<std::string> describe(const std::vector<record> &records) {
    std::vector<std::string> lines;
    lines.reserve(records.size());
    for (const record &each : records)
        lines.push_back(std::string(record_word(each.kind)) + "  " + each.text + "  [" +
                        each.thread_name + "]");
    return lines;
}

// Whether the step came out as recorded; the difference where not.
bool compare_step(const replayed_step &taken, const std::string &root,
                  replay_difference *difference) {
    const std::vector<record> &replayed = taken.replayed.records;
    if (std::equal(taken.recorded.begin(), taken.recorded.end(), replayed.begin(), replayed.end(),
                   [&](const record &a, const record &b) { return is_same(a, b, root); }))
        return true;
    *difference = {true,
                   taken.line,
                   taken.replayed.time_ns,
                   describe_happening(taken.replayed.taken),
                   describe(taken.recorded),
                   describe(replayed)};
    return false;
}

void count(replay_counts *counts, const step &taken) {
    ++counts->happenings;
    counts->messages += taken.taken.kind == happening_kind::message ? 1 : 0;
    counts->intervals += taken.taken.kind == happening_kind::interval ? 1 : 0;
    counts->duration_ns = taken.time_ns;
}

}  // namespace

std::string replay_exactly(recording *file, const simulated_figures &figures, replay_counts *counts,
                           replay_difference *difference, const step_taker &sink) {
    simulator_setup setup;
    setup.image = device_image_path();
    setup.figures = figures;
    setup.properties = file->header.properties;
    setup.answers = file->header.answers;
    recording_line line;
    replayed_step current;
    int64_t first_ns = 0;
    bool comparing = difference != nullptr;
    // Whether it goes on.
    const auto finish_step = [&] {
        counts->records += current.replayed.records.size();
        const bool same = !comparing || compare_step(current, file->header.root, difference);
        if (!current.replayed.records.empty())
            sink(current.replayed);
        current.recorded.clear();
        current.replayed.records.clear();
        return same;
    };
    while (recording_next(file, &line)) {
        if (!line.is_happening) {
            if (comparing && !line.aside && !line.came.text.empty())
                current.recorded.push_back(std::move(line.came));
            continue;
        }
        if ((!current.recorded.empty() || !current.replayed.records.empty()) && !finish_step())
            return {};
        if (first_ns == 0) {
            first_ns = line.time_ns;
            simulator_replay_from(setup, first_ns);
        }
        current.line = line.number;
        current.replayed.taken = line.taken;
        current.replayed.time_ns = line.time_ns - first_ns;
        count(counts, current.replayed);
        const int result = take_up(line.taken);
        current.replayed.records = simulator_take();
        if (result != 0)
            break;
    }
    // What came of the last happening of a recording that was cut off is not all there.
    if (!file->remarks.empty())
        comparing = false;
    finish_step();
    return file->error;
}
