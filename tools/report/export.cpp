#include "tools/report/export.h"

#include <stdio.h>

#include <cmath>

#include "tools/base/exit_status.h"
#include "tools/base/json.h"
#include "tools/base/output_file.h"
#include "tools/base/shown.h"
#include "tools/explain/history.h"
#include "tools/report/run_data.h"

using nlohmann::ordered_json;

namespace {

constexpr int process = 1;

// Rows of a trace: what is no thread of the daemon's, then its threads as they come.
constexpr int modes_thread = 1;
constexpr int decisions_thread = 2;
constexpr int first_daemon_thread = 10;

// To nanoseconds.
double microseconds(double time_s) {
    return std::round(time_s * 1e9) / 1e3;
}

ordered_json event(const char *phase, const std::string &name, double time_s, int thread) {
    return {{"ph", phase},
            {"name", name},
            {"ts", microseconds(time_s)},
            {"pid", process},
            {"tid", thread}};
}

void add_thread(ordered_json *events, int thread, const std::string &name) {
    ordered_json named = event("M", "thread_name", 0, thread);
    named["args"] = {{"name", name}};
    events->push_back(named);
}

// What each thread did, an instant each, on the thread's own row.
void add_timeline(ordered_json *events, const report_run &run) {
    std::map<std::string, int> threads;
    for (const record &entry : run.timeline) {
        const std::string name = entry.thread_name.empty() ? "clients" : entry.thread_name;
        const auto [thread, added] =
            threads.try_emplace(name, first_daemon_thread + static_cast<int>(threads.size()));
        if (added)
            add_thread(events, thread->second, name);
        ordered_json instant =
            event("i", entry.text, static_cast<double>(entry.time_ns) / 1e9, thread->second);
        instant["s"] = "t";
        instant["cat"] = record_word(entry.kind);
        events->push_back(instant);
    }
}

ordered_json make_trace(const report_run &run) {
    ordered_json events = ordered_json::array();
    add_thread(&events, modes_thread, "analyser");
    add_thread(&events, decisions_thread, "decisions");
    for (const report_band &band : run.bands) {
        ordered_json slice = event("X", band.kind, band.from_s, modes_thread);
        slice["dur"] = microseconds(band.to_s - band.from_s);
        events.push_back(slice);
    }
    for (size_t i = 0; i < run.intervals_us.size(); ++i) {
        ordered_json counter = event("C", "fps", run.time_s[i], 0);
        counter["args"] = {{"fps", 1e6 / run.intervals_us[i]}};
        events.push_back(counter);
    }
    for (const report_cap_point &point : run.caps) {
        ordered_json counter = event("C", "caps (MHz)", point.time_s, 0);
        for (size_t i = 0; i < point.mhz.size(); ++i)
            counter["args"][run.state.caps[i].name] = point.mhz[i];
        events.push_back(counter);
    }
    for (const report_scene &scene : run.scenes) {
        ordered_json instant =
            event("i", "scene " + std::to_string(scene.scene), scene.time_s, modes_thread);
        instant["s"] = "t";
        instant["args"] = {{"fps", scene.fps}, {"share", scene.share}, {"buckets", scene.buckets}};
        events.push_back(instant);
    }
    for (const decision &made : run.decisions) {
        ordered_json instant = event("i", decision_sentence(made),
                                     static_cast<double>(made.time_ns) / 1e9, decisions_thread);
        instant["s"] = "t";
        instant["cat"] = decision_kind_word(decision_kind_of(made));
        instant["args"] = {{"detail", decision_detail(made)}};
        events.push_back(instant);
    }
    add_timeline(&events, run);
    return {{"traceEvents", events}, {"displayTimeUnit", "ms"}};
}

std::string quoted(const std::string &text) {
    std::string quote = "\"";
    for (const char letter : shown(text))
        quote.append(letter == '"' ? 2 : 1, letter);
    return quote + "\"";
}

// One row an interval, one a decision; what a row has not is empty.
std::string make_tables(const report_run &run) {
    std::string text = "row,t_s,interval_us";
    for (const cap_state &cap : run.state.caps)
        text += "," + cap.name + "_mhz";
    text += ",kind,text,detail\n";
    char line[256];
    size_t cap = 0;
    size_t told = 0;
    const std::string no_caps(run.state.caps.size(), ',');
    const auto tell_until = [&](double time_s) {
        for (; told < run.decisions.size(); ++told) {
            const decision &made = run.decisions[told];
            const double at_s = static_cast<double>(made.time_ns) / 1e9;
            if (at_s > time_s)
                break;
            snprintf(line, sizeof(line), "decision,%.6f,", at_s);
            text += line + no_caps + "," + decision_kind_word(decision_kind_of(made)) + "," +
                    quoted(decision_sentence(made)) + "," + quoted(decision_detail(made)) + "\n";
        }
    };
    for (size_t i = 0; i < run.intervals_us.size(); ++i) {
        tell_until(run.time_s[i]);
        while (cap + 1 < run.caps.size() && run.caps[cap + 1].time_s < run.time_s[i])
            ++cap;
        snprintf(line, sizeof(line), "interval,%.6f,%.0f", run.time_s[i], run.intervals_us[i]);
        text += line;
        for (const double mhz : run.caps[cap].mhz) {
            snprintf(line, sizeof(line), ",%.1f", mhz);
            text += line;
        }
        text += ",,,\n";
    }
    tell_until(run.last_s);
    return text;
}

}  // namespace

int export_command(const std::string &path, const std::string &to, const std::string &out) {
    const std::string unfit = out.empty() ? "" : output_check(out, {path});
    if (!unfit.empty())
        return refuse(unfit);
    report_run run;
    const history_source source = history_of_file(
        path, [&](const history_source &begun) { run = report_begin(begun.figures); },
        [&](const step &taken) { report_take(&run, taken); });
    if (!source.error.empty())
        return refuse(path + ": " + source.error);
    report_end(&run);
    const std::string content = to == "csv" ? make_tables(run) : json_write(make_trace(run)) + "\n";
    if (out.empty()) {
        fwrite(content.data(), 1, content.size(), stdout);
        return 0;
    }
    const std::string wrong = output_whole(out, content);
    if (!wrong.empty())
        return fail("cannot write " + wrong);
    return 0;
}
