#include "tools/report/run_data.h"
#include <stdio.h>

#include <algorithm>
#include <cmath>

#include "fia/records.h"
#include "tools/frames/frame_figures.h"
#include "tools/recording/messages.h"

namespace {

constexpr size_t timeline_max = 20000;  // entries of a page

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

void take_scene(report_run *run, const step &taken) {
    for (const record &line : taken.records)
        if (record_is_line(line, log_line::measure_bucket) && line.values[1] == "1")
            run->buckets.push_back(line.values[0] + " fps: " + line.values[2] +
                                   " intervals, variance " + line.values[3] + " to " +
                                   line.values[4]);
    if (step_line(taken, log_line::measure_complete) != nullptr)
        run->scenes.push_back({run->state.activity, run->state.scene, seconds(taken.time_ns),
                               static_cast<int>(fia_bucket_fps(run->state.profile_bucket)),
                               run->state.profile_share, run->buckets});
    if (step_line(taken, log_line::measure_heading) != nullptr)
        run->buckets.clear();
}

void keep_record(report_run *run, const record &came) {
    if (run->timeline.size() < timeline_max)
        run->timeline.push_back(came);
    else
        ++run->timeline_left_out;
}

void keep_timeline(report_run *run, const step &taken) {
    record told;
    told.kind = record_kind::message;
    told.time_ns = taken.time_ns;
    if (taken.taken.kind == happening_kind::message)
        told.text = describe_message(*taken.taken.message);
    if (taken.taken.kind == happening_kind::panel)
        told.text = panel_is_on(taken.taken) ? "panel on" : "panel off";
    if (!told.text.empty())
        keep_record(run, told);
    for (const record &came : taken.records)
        keep_record(run, came);
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

void report_take(report_run *run, const step &taken) {
    const double time_s = seconds(taken.time_ns);
    const bool is_interval = taken.taken.kind == happening_kind::interval;
    const int32_t interval_us = is_interval ? taken.taken.interval_us.value_or(0) : 0;
    pass_time(run, time_s);
    if (interval_us > 0) {
        run->time_s.push_back(time_s);
        run->intervals_us.push_back(interval_us);
        if (is_lowered(run->state)) {
            run->lowered_us += interval_us;
            ++run->lowered;
        }
    }
    for (const record &came : taken.records)
        figures_count(&run->counts, came);
    for (decision &made : why_take(&run->state, taken))
        run->decisions.push_back(std::move(made));
    if (is_interval && taken.records.empty())
        return;
    take_scene(run, taken);
    const std::vector<double> mhz = caps_of(run->state);
    if (mhz != run->caps.back().mhz)
        run->caps.push_back({time_s, mhz});
    const analyser_mode mode = run->state.analyser;
    note_band(run, "measuring", mode == analyser_mode::measuring, time_s);
    note_band(run, "suspended", mode == analyser_mode::suspended, time_s);
    note_band(run, "screen off", run->state.panel_on.has_value() && !*run->state.panel_on, time_s);
    keep_timeline(run, taken);
}

void report_end(report_run *run) {
    for (const report_band &band : run->open)
        run->bands.push_back({band.kind, band.from_s, run->last_s});
    run->open.clear();
    run->caps.push_back({run->last_s, run->caps.back().mhz});
    figures_finish(&run->counts, static_cast<int64_t>(run->last_s * 1e9));
}

report_figures report_figures_of(const report_run &run) {
    const frame_figures frames = frame_figures_of(run.intervals_us);
    const double minutes = run.last_s / 60;
    report_figures figures;
    figures.fps_mean = frames.fps_mean;
    figures.fps_1_low = frames.fps_1_low;
    figures.above_2_median = static_cast<double>(frames.above_2_median);
    figures.median_us = frames.median_us;
    if (run.counts.last_ns > 0)
        figures.lowered =
            static_cast<double>(run.counts.lowered_ns) / static_cast<double>(run.counts.last_ns);
    if (minutes > 0)
        figures.cap_changes_per_minute = figures_cap_changes(run.counts) / minutes;
    figures.measurements = run.counts.measurements;
    figures.janks = static_cast<double>(run.counts.janks);
    return figures;
}

std::string report_verdict(const report_run &run) {
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
