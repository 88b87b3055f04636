#include "tools/report/report.h"
#include "tools/base/output_file.h"
#include "tools/base/shown.h"

#include <stdio.h>

#include <filesystem>

#include "device/virtual_device.h"
#include "tools/base/exit_status.h"
#include "tools/base/files.h"
#include "tools/explain/history.h"
#include "tools/frames/frame_file.h"
#include "tools/report/page_json.h"
#include "tools/report/run_data.h"
#include "tools/simulated/settings.h"
#include "tools/simulated/stimulus.h"

namespace {

constexpr char data_place[] = "<!--DATA-->";

// The run that a recording, or a log, tells of. Empty, or what is wrong.
std::string read_run(const std::string &path, report_run *run) {
    const history_source source = history_of_file(
        path, [&](const history_source &begun) { *run = report_begin(begun.figures); },
        [&](const step &taken) { report_take(run, taken); });
    if (!source.error.empty())
        return path + ": " + source.error;
    warn_of(path, source.remarks);
    run->title = std::filesystem::path(path).filename();
    run->device = source.device;
    run->daemon = source.daemon;
    run->rests_on = source.device == "lab" ? "a model's result: the lab"
                    : source.recorded      ? "a recording of what the daemon took"
                                           : "what was seen from outside";
    report_end(run);
    return {};
}

// The run that a stimulus leads to, in the simulator; its intervals are the stimulus's.
std::string play_run(const stimulus &given, report_run *run) {
    *run = report_begin(given.setup.figures);
    auto next = given.happenings.begin();
    const auto take_intervals = [&](int64_t until_ns) {
        for (; next != given.happenings.end() && next->time_ns < until_ns; ++next)
            if (next->kind == happening_kind::interval)
                report_take(run, {*next, next->time_ns, "", {}});
    };
    std::string wrong = stimulus_play(given, [&](const step &taken) {
        take_intervals(taken.time_ns);
        while (taken.taken.kind == happening_kind::interval && next != given.happenings.end() &&
               next->time_ns <= taken.time_ns)
            if ((next++)->kind == happening_kind::interval)
                break;  // this one
        report_take(run, taken);
    });
    take_intervals(INT64_MAX);
    run->rests_on = "a model's result: the daemon simulated, the intervals as they were";
    report_end(run);
    return wrong;
}

// The same recording with other figures. Empty, or what is wrong.
std::string replay_run(const std::string &path, const std::vector<std::string> &settings,
                       report_run *run) {
    recording file = recording_open(path);
    if (!file.error.empty())
        return path + ": " + file.error;
    stimulus changed = stimulus_of_recording(&file);
    std::string wrong = changed.error.empty()
                            ? settings_of_header(file.header, &changed.setup.figures)
                            : changed.error;
    if (!wrong.empty())
        return path + ": " + wrong;
    wrong = settings_apply_all(&changed.setup.figures, settings);
    if (!wrong.empty())
        return "--set: " + wrong;
    wrong = play_run(changed, run);
    run->title = std::filesystem::path(path).filename();
    for (const std::string &setting : settings)
        run->title += " " + setting;
    run->device = file.header.device;
    run->daemon = file.header.daemon;
    return wrong;
}

}  // namespace

int report_command(const report_options &options) {
    if (options.files.size() > 2 || (options.files.size() == 2 && !options.settings.empty()))
        return refuse("a report shows one recording or two, or one with --set");
    const std::string unfit = output_check(options.out, options.files);
    if (!unfit.empty())
        return refuse(unfit);
    std::vector<report_run> runs(options.files.size());
    for (size_t i = 0; i < runs.size(); ++i) {
        const std::string wrong = read_run(options.files[i], &runs[i]);
        if (!wrong.empty())
            return refuse(wrong);
    }
    if (!options.settings.empty()) {
        const std::string wrong =
            replay_run(options.files[0], options.settings, &runs.emplace_back());
        if (!wrong.empty())
            return refuse(wrong);
    }
    std::string page = read_file(sibling_program("../share/dvxd/report.html"));
    const size_t place = page.find(data_place);
    if (place == std::string::npos)
        return refuse("the page of reports is not installed beside this program");
    page.replace(place, sizeof(data_place) - 1, page_json(runs));
    const std::string wrong = output_whole(options.out, page);
    if (!wrong.empty())
        return fail("cannot write " + wrong);
    for (const report_run &run : runs)
        printf("%s: %s; %s\n", shown(options.out).c_str(), shown(run.title).c_str(),
               report_verdict(run).c_str());
    return 0;
}
