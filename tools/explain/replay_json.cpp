#include "tools/explain/replay_json.h"

#include "tools/base/json.h"
#include "tools/explain/explain_json.h"

using nlohmann::ordered_json;

namespace {

ordered_json run_json(const run_account &run, bool why) {
    const run_figures &figures = run.figures;
    ordered_json caps = ordered_json::object();
    for (const auto &[name, cap] : figures.caps)
        caps[name] = {{"changes", cap.changes},
                      {"lowered", figures_share(cap.lowered_ns, run.duration_ns)},
                      {"mean", figures_cap_mean(cap, run.duration_ns)}};
    ordered_json said = {{"duration_s", static_cast<double>(run.duration_ns) / 1e9},
                         {"caps", caps},
                         {"cap_changes", figures_cap_changes(figures)},
                         {"lowered", figures_share(figures.lowered_ns, run.duration_ns)},
                         {"measurements", figures.measurements},
                         {"restarts", figures.restarts},
                         {"returns", figures.returns},
                         {"janks", figures.janks},
                         {"judged", figures.judged}};
    if (!why)
        return said;
    said["decisions"] = ordered_json::array();
    for (const decision &made : run.decisions)
        said["decisions"].push_back(decision_json(made));
    return said;
}

}  // namespace

std::string exact_replay_line(const exact_replay &replayed, bool why) {
    const replay_difference &difference = replayed.difference;
    ordered_json said = run_json(replayed.run, why);
    said["happenings"] = replayed.counts.happenings;
    said["messages"] = replayed.counts.messages;
    said["intervals"] = replayed.counts.intervals;
    said["records"] = replayed.counts.records;
    if (replayed.compared)
        said["different"] = difference.found;
    if (difference.found)
        said["first_difference"] = {{"line", difference.line},
                                    {"t_s", static_cast<double>(difference.time_ns) / 1e9},
                                    {"happening", difference.happening},
                                    {"recorded", difference.recorded},
                                    {"replayed", difference.replayed}};
    return json_write(said);
}

std::string modelled_replay_line(const run_account &run, const run_account *without, bool why) {
    ordered_json said = run_json(run, why);
    if (without != nullptr)
        said["without"] = run_json(*without, false);
    return json_write(said);
}
