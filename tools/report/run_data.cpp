#include "tools/report/run_data.h"
#include <stdio.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "tools/frames/frame_figures.h"
#include "tools/recording/messages.h"
#include "tools/simulated/settings.h"

using nlohmann::ordered_json;

namespace {

constexpr size_t timeline_max = 20000;  // entries of a page
constexpr double percentiles[] = {50, 75, 90, 95, 99, 99.9};

double seconds(int64_t time_ns) {
    return static_cast<double>(time_ns) / 1e9;
}

// Opens or closes a band.
void note_band(report_run *run, const char *kind, bool holds, double time_s) {
    const auto open = std::find_if(run->open.begin(), run->open.end(),
                                   [&](const report_band &band) { return band.kind == kind; });
    if (holds && open == run->open.end()) {
        run->open.push_back({kind, time_s, time_s});
    } else if (!holds && open != run->open.end()) {
        run->bands.push_back({kind, open->from_s, time_s});
        run->open.erase(open);
    }
}

void pass_time(report_run *run, double time_s) {
    const double passed_s = std::max(time_s - run->last_s, 0.0);
    for (size_t i = 0; i < run->state.caps.size(); ++i)
        run->level_s[i][run->state.caps[i].level] += passed_s;
    run->last_s = std::max(run->last_s, time_s);
}

std::vector<double> caps_of(const daemon_state &state) {
    std::vector<double> mhz;
    for (const cap_state &cap : state.caps)
        mhz.push_back(cap.hertz[cap.level] / 1e6);
    return mhz;
}

bool is_lowered(const daemon_state &state) {
    return std::any_of(state.caps.begin(), state.caps.end(),
                       [](const cap_state &cap) { return cap.level != 0; });
}

void take_scene(report_run *run, const moment &now) {
    for (const told_entry &told : now.came)
        if (told.line.row != nullptr && told.line.row->id == line_measure_bucket &&
            told.line.values[1] == "1")
            run->buckets.push_back(told.line.values[0] + " fps: " + told.line.values[2] +
                                   " intervals, variance " + told.line.values[3] + " to " +
                                   told.line.values[4]);
    if (moment_line(now, line_measure_complete) != nullptr)
        run->scenes.push_back({run->state.activity, run->state.scene, seconds(now.time_ns),
                               60 - 3 * run->state.profile_bucket, run->state.profile_share,
                               run->buckets});
    if (moment_line(now, line_measure_heading) != nullptr)
        run->buckets.clear();
}

void keep_timeline(report_run *run, const moment &now) {
    std::vector<timeline_entry> entries;
    if (now.kind == moment_message)
        entries.push_back(
            {now.time_ns, timeline_message, 0, describe_message(now.message, now.is_text), "", 0});
    if (now.kind == moment_panel)
        entries.push_back(
            {now.time_ns, timeline_message, 0, now.on ? "panel on" : "panel off", "", 0});
    for (const told_entry &told : now.came)
        entries.push_back(told.entry);
    for (timeline_entry &entry : entries)
        if (run->timeline.size() < timeline_max)
            run->timeline.push_back(std::move(entry));
        else
            ++run->timeline_left_out;
}

ordered_json describe_figures(const report_run &run) {
    const frame_figures frames = frame_figures_of(run.intervals_us);
    const double minutes = run.last_s / 60;
    const double lowered = run.counts.last_ns > 0 ? static_cast<double>(run.counts.lowered_ns) /
                                                        static_cast<double>(run.counts.last_ns)
                                                  : 0;
    return {
        {"fps_mean", frames.fps_mean},
        {"fps_1_low", frames.fps_1_low},
        {"above_2x", frames.above_2_median},
        {"lowered", lowered},
        {"cap_changes_per_minute", minutes > 0 ? figures_cap_changes(run.counts) / minutes : 0.0},
        {"median_us", frames.median_us},
        {"measurements", run.counts.measurements},
        {"janks", run.counts.janks}};
}

// Caps and what they cost, in a sentence.
std::string describe_verdict(const report_run &run) {
    char text[256];
    const size_t count = run.intervals_us.size();
    if (count == 0)
        return "no frame intervals were recorded";
    double whole_us = 0;
    for (const double interval_us : run.intervals_us)
        whole_us += interval_us;
    const double share = 100 * run.lowered_us / whole_us;
    if (run.lowered == 0)
        return "no cap was lowered while frames came";
    if (run.lowered == count) {
        snprintf(text, sizeof(text), "caps were lowered all of the time, at %.1f fps",
                 1e6 * static_cast<double>(count) / whole_us);
        return text;
    }
    const double with_fps = 1e6 * static_cast<double>(run.lowered) / run.lowered_us;
    const double without_fps =
        1e6 * static_cast<double>(count - run.lowered) / (whole_us - run.lowered_us);
    const int length = snprintf(
        text, sizeof(text),
        "caps were lowered %.0f %% of the frames' time: %.1f fps then, %.1f with full caps", share,
        with_fps, without_fps);
    const double less = without_fps - with_fps;
    if (std::fabs(less) >= 0.05)  // else the figures are the same
        snprintf(text + length, sizeof(text) - static_cast<size_t>(length), ", %.1f %s",
                 std::fabs(less), less > 0 ? "less" : "more");
    return text;
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

}  // namespace

report_run report_begin(const simulated_figures &figures) {
    report_run run;
    run.figures = figures;
    run.state = daemon_state_make(figures);
    for (const cap_state &cap : run.state.caps)
        run.level_s.emplace_back(cap.hertz.size());
    run.caps.push_back({0, caps_of(run.state)});
    return run;
}

void report_take(report_run *run, const moment &now) {
    const double time_s = seconds(now.time_ns);
    pass_time(run, time_s);
    if (now.kind == moment_interval && now.interval_us > 0) {
        run->time_s.push_back(time_s);
        run->intervals_us.push_back(now.interval_us);
        if (is_lowered(run->state)) {
            run->lowered_us += now.interval_us;
            ++run->lowered;
        }
    }
    for (const told_entry &told : now.came)
        figures_count(&run->counts, told.entry);
    for (decision &made : why_take(&run->state, now))
        run->decisions.push_back(std::move(made));
    if (now.kind == moment_interval && now.came.empty())
        return;
    take_scene(run, now);
    const std::vector<double> mhz = caps_of(run->state);
    if (mhz != run->caps.back().mhz)
        run->caps.push_back({time_s, mhz});
    note_band(run, "measuring", run->state.analyser == analyser_measuring, time_s);
    note_band(run, "suspended", run->state.analyser == analyser_suspended, time_s);
    note_band(run, "screen off", run->state.panel_on.has_value() && !*run->state.panel_on, time_s);
    keep_timeline(run, now);
}

void report_end(report_run *run) {
    for (const report_band &band : run->open)
        run->bands.push_back({band.kind, band.from_s, run->last_s});
    run->open.clear();
    run->caps.push_back({run->last_s, run->caps.back().mhz});
    figures_finish(&run->counts, static_cast<int64_t>(run->last_s * 1e9));
}

ordered_json report_describe(const report_run &run) {
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
        decisions.push_back(
            {seconds(made.time_ns), decision_kind_word(made.kind), made.text, made.detail});
    ordered_json timeline = ordered_json::array();
    for (const timeline_entry &entry : run.timeline)
        timeline.push_back({seconds(entry.time_ns), timeline_kind_name(entry.kind), entry.text,
                            entry.thread_name});
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
            {"figures", describe_figures(run)},
            {"verdict", describe_verdict(run)},
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
