#include "tools/report/report.h"
#include "tools/base/output_file.h"
#include "tools/base/shown.h"

#include <stdio.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "device/virtual_device.h"
#include "tools/base/exit_status.h"
#include "tools/explain/moments.h"
#include "tools/frames/frame_file.h"
#include "tools/report/run_data.h"
#include "tools/simulated/course.h"
#include "tools/simulated/settings.h"

using nlohmann::ordered_json;

namespace {

constexpr double least_difference = 0.001;  // below it neither of two figures is the better
constexpr char data_place[] = "<!--DATA-->";

// The run that a recording, or a log, tells of. Empty, or what is wrong.
std::string read_run(const std::string &path, report_run *run) {
    const moment_source source = moments_of_file(
        path, [&](const moment_source &begun) { *run = report_begin(begun.figures); },
        [&](const moment &now) { report_take(run, now); });
    if (!source.error.empty())
        return path + ": " + source.error;
    for (const std::string &remark : source.remarks)
        warn(path + ": " + remark);
    run->title = std::filesystem::path(path).filename();
    run->device = source.device;
    run->daemon = source.daemon;
    run->rests_on = source.device == "lab" ? "a model's result: the lab"
                    : source.recorded      ? "a recording of what the daemon took"
                                           : "what was seen from outside";
    report_end(run);
    return {};
}

// The run that a course leads to, in the simulator; its intervals are the course's.
std::string play_run(const course &what, report_run *run) {
    *run = report_begin(what.setup.figures);
    size_t next = 0;
    const auto take_intervals = [&](int64_t until_ns) {
        for (; next < what.steps.size() && what.steps[next].time_ns < until_ns; ++next) {
            moment now;
            now.kind = moment_interval;
            now.time_ns = what.steps[next].time_ns;
            now.interval_us = what.steps[next].number;
            if (what.steps[next].kind == course_interval)
                report_take(run, now);
        }
    };
    std::string wrong = course_play(what, [&](const moment &now) {
        take_intervals(now.time_ns);
        if (now.kind == moment_interval)
            ++next;  // this one
        report_take(run, now);
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
    course what = course_of_recording(&file);
    std::string wrong =
        what.error.empty() ? settings_of_header(file.header, &what.setup.figures) : what.error;
    if (!wrong.empty())
        return path + ": " + wrong;
    for (const std::string &setting : settings)
        if (wrong.empty())
            wrong = setting_apply_text(&what.setup.figures, setting);
    if (wrong.empty())
        wrong = settings_check(what.setup.figures);
    if (!wrong.empty())
        return "--set: " + wrong;
    wrong = play_run(what, run);
    run->title = std::filesystem::path(path).filename();
    for (const std::string &setting : settings)
        run->title += " " + setting;
    run->device = file.header.device;
    run->daemon = file.header.daemon;
    return wrong;
}

struct compared_figure {
    const char *name;
    const char *key;
    int better;  // 1: more, -1: less, 0: neither
    double scale;
    const char *unit;
};

constexpr compared_figure compared[] = {
    {"mean frame rate", "fps_mean", 1, 1, "fps"},
    {"1 % low", "fps_1_low", 1, 1, "fps"},
    {"frames above 2 x the median", "above_2x", -1, 1, ""},
    {"time with a cap lowered", "lowered", 1, 100, "%"},
    {"cap changes a minute", "cap_changes_per_minute", -1, 1, ""},
    {"measurements completed", "measurements", 0, 1, ""},
    {"janks counted", "janks", -1, 1, ""},
};

// What differs between two runs, what differs most first.
ordered_json describe_differences(const ordered_json &first, const ordered_json &second) {
    std::vector<std::pair<double, ordered_json>> rows;
    for (const compared_figure &figure : compared) {
        const double a = first["figures"][figure.key].get<double>() * figure.scale;
        const double b = second["figures"][figure.key].get<double>() * figure.scale;
        const double size = std::fabs(b - a) / std::max({std::fabs(a), std::fabs(b), 1e-9});
        const double by = size < least_difference ? 0 : (b - a) * figure.better;
        rows.push_back({size,
                        {{"name", figure.name},
                         {"unit", figure.unit},
                         {"first", a},
                         {"second", b},
                         {"better", by > 0   ? "second"
                                    : by < 0 ? "first"
                                             : ""}}});
    }
    std::stable_sort(rows.begin(), rows.end(),
                     [](const auto &a, const auto &b) { return a.first > b.first; });
    ordered_json said = ordered_json::array();
    for (auto &[size, row] : rows)
        said.push_back(std::move(row));
    return said;
}

// JSON that may stand in a page's script: no text in it can end the script.
std::string page_json(const ordered_json &data) {
    const std::string json = data.dump(-1, ' ', true, ordered_json::error_handler_t::replace);
    std::string safe;
    safe.reserve(json.size());
    for (const char letter : json)
        if (letter == '<')
            safe += "\\u003c";
        else
            safe += letter;
    return safe;
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
    ordered_json data = {{"runs", ordered_json::array()}};
    for (const report_run &run : runs)
        data["runs"].push_back(report_describe(run));
    if (runs.size() == 2)
        data["differences"] = describe_differences(data["runs"][0], data["runs"][1]);
    std::string page = device_read_file(sibling_program("../share/dvxd/report.html"));
    const size_t place = page.find(data_place);
    if (place == std::string::npos)
        return refuse("the page of reports is not installed beside this program");
    page.replace(place, sizeof(data_place) - 1, page_json(data));
    const std::string wrong = output_whole(options.out, page);
    if (!wrong.empty())
        return fail("cannot write " + wrong);
    for (size_t i = 0; i < runs.size(); ++i)
        printf("%s: %s; %s\n", shown(options.out).c_str(), shown(runs[i].title).c_str(),
               data["runs"][i]["verdict"].get<std::string>().c_str());
    return 0;
}
