#include "tools/report/page_json.h"

#include <algorithm>
#include <cmath>

#include "tools/base/json.h"
#include "tools/explain/explain_json.h"
#include "tools/simulated/settings.h"

using nlohmann::ordered_json;

namespace {

constexpr double percentiles[] = {50, 75, 90, 95, 99, 99.9};
constexpr double least_difference = 0.001;  // below it neither of two figures is the better

ordered_json describe_figures(const report_figures &figures) {
    return {{"fps_mean", figures.fps_mean},
            {"fps_1_low", figures.fps_1_low},
            {"above_2x", std::llround(figures.above_2_median)},
            {"lowered", figures.lowered},
            {"cap_changes_per_minute", figures.cap_changes_per_minute},
            {"median_us", figures.median_us},
            {"measurements", std::llround(figures.measurements)},
            {"janks", std::llround(figures.janks)}};
}

ordered_json describe_percentiles(std::vector<double> sorted) {
    ordered_json said = ordered_json::array();
    std::sort(sorted.begin(), sorted.end());
    for (const double percentile : percentiles)
        if (!sorted.empty()) {
            const double place = percentile / 100 * static_cast<double>(sorted.size() - 1);
            said.push_back({percentile, sorted[static_cast<size_t>(std::lround(place))]});
        }
    return said;
}

ordered_json describe_levels(const report_run &run) {
    ordered_json said = ordered_json::array();
    for (size_t i = 0; i < run.state.caps.size(); ++i) {
        ordered_json levels = ordered_json::array();
        for (size_t level = 0; level < run.level_s[i].size(); ++level)
            levels.push_back({run.state.caps[i].hertz[level] / 1e6, run.level_s[i][level]});
        said.push_back({{"name", run.state.caps[i].name}, {"levels", levels}});
    }
    return said;
}

// Milliseconds between the ends of intervals, so that times stay short.
ordered_json describe_times(const std::vector<double> &time_s) {
    ordered_json said = ordered_json::array();
    int64_t last_ms = 0;
    for (const double each : time_s) {
        const int64_t ms = std::llround(each * 1000);
        said.push_back(ms - last_ms);
        last_ms = ms;
    }
    return said;
}

ordered_json describe_run(const report_run &run, const report_figures &figures) {
    ordered_json bands = ordered_json::array();
    for (const report_band &band : run.bands)
        bands.push_back({band.kind, band.from_s, band.to_s});
    ordered_json caps = ordered_json::array();
    for (const report_cap_point &point : run.caps)
        caps.push_back({point.time_s, point.mhz});
    ordered_json scenes = ordered_json::array();
    for (const report_scene &scene : run.scenes)
        scenes.push_back({{"activity", scene.activity},
                          {"scene", scene.scene},
                          {"t", scene.time_s},
                          {"fps", scene.fps},
                          {"share", scene.share},
                          {"buckets", scene.buckets}});
    ordered_json decisions = ordered_json::array();
    for (const decision &made : run.decisions)
        decisions.push_back(decision_json(made));
    ordered_json timeline = ordered_json::array();
    for (const record &entry : run.timeline)
        timeline.push_back({static_cast<double>(entry.time_ns) / 1e9, record_word(entry.kind),
                            entry.text, entry.thread_name});
    ordered_json settings = ordered_json::object();
    for (const auto &[name, value] : settings_of(run.figures))
        settings[name] = value;
    ordered_json whole_us = ordered_json::array();
    for (const double interval_us : run.intervals_us)
        whole_us.push_back(std::llround(interval_us));
    return {{"title", run.title},
            {"device", run.device},
            {"daemon", run.daemon},
            {"rests_on", run.rests_on},
            {"length_s", run.last_s},
            {"figures", describe_figures(figures)},
            {"verdict", report_verdict(run)},
            {"percentiles", describe_percentiles(run.intervals_us)},
            {"dt_ms", describe_times(run.time_s)},
            {"us", whole_us},
            {"caps", caps},
            {"levels", describe_levels(run)},
            {"bands", bands},
            {"scenes", scenes},
            {"decisions", decisions},
            {"timeline", timeline},
            {"timeline_left_out", run.timeline_left_out},
            {"settings", settings}};
}

struct compared_figure {
    const char *name;
    double report_figures::*value;
    int better;  // 1: more, -1: less, 0: neither
    double scale;
    const char *unit;
};

constexpr compared_figure compared[] = {
    {"mean frame rate", &report_figures::fps_mean, 1, 1, "fps"},
    {"1 % low", &report_figures::fps_1_low, 1, 1, "fps"},
    {"frames above 2 x the median", &report_figures::above_2_median, -1, 1, ""},
    {"time with a cap lowered", &report_figures::lowered, 1, 100, "%"},
    {"cap changes a minute", &report_figures::cap_changes_per_minute, -1, 1, ""},
    {"measurements completed", &report_figures::measurements, 0, 1, ""},
    {"janks counted", &report_figures::janks, -1, 1, ""},
};

// What differs between two runs, what differs most first.
ordered_json describe_differences(const report_figures &first, const report_figures &second) {
    std::vector<std::pair<double, ordered_json>> rows;
    for (const compared_figure &figure : compared) {
        const double a = first.*figure.value * figure.scale;
        const double b = second.*figure.value * figure.scale;
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

}  // namespace

std::string page_json(const std::vector<report_run> &runs) {
    ordered_json data = {{"runs", ordered_json::array()}};
    std::vector<report_figures> figures;
    figures.reserve(runs.size());
    for (const report_run &run : runs) {
        figures.push_back(report_figures_of(run));
        data["runs"].push_back(describe_run(run, figures.back()));
    }
    if (runs.size() == 2)
        data["differences"] = describe_differences(figures[0], figures[1]);
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
