// dvxctl replay: what it prints of a replay.
#include <stdio.h>

#include <algorithm>

#include "device/virtual_device.h"
#include "tools/base/exit_status.h"
#include "tools/base/json.h"
#include "tools/base/shown.h"
#include "tools/base/terminal.h"
#include "tools/base/words.h"
#include "tools/explain/why.h"
#include "tools/frames/frame_file.h"
#include "tools/simulated/apart.h"
#include "tools/simulated/course.h"
#include "tools/simulated/replay.h"
#include "tools/simulated/settings.h"

using json = nlohmann::ordered_json;

namespace {

constexpr double second_ns = 1e9;
constexpr char not_comparable[] =
    "only a recording of what the daemon took, replayed with its own figures, can be compared";

int fail(const std::string &path, const std::string &reason) {
    return refuse(path + ": " + reason);
}

// What is kept of a run while it goes on.
struct run_account {
    run_figures figures;
    daemon_state state;
    json decisions = json::array();
};

void count_moment(run_account *run, bool why, const moment &now) {
    for (const told_entry &told : now.came)
        figures_count(&run->figures, told.entry);
    if (why)
        for (const decision &made : why_take(&run->state, now))
            run->decisions.push_back(why_describe(made));
}

void print_decisions(const json &decisions) {
    for (const json &made : decisions)
        print_folded(decision_text({static_cast<int64_t>(made.at("t_s").get<double>() * 1e9),
                                    decision_other, made.at("text"), made.at("detail")}),
                     decision_indent);
}

json describe_figures(const run_figures &figures, int64_t duration_ns) {
    json caps = json::object();
    for (const auto &[name, cap] : figures.caps)
        caps[name] = {{"changes", cap.changes},
                      {"lowered", duration_ns > 0 ? static_cast<double>(cap.lowered_ns) /
                                                        static_cast<double>(duration_ns)
                                                  : 0.0},
                      {"mean", figures_cap_mean(cap, duration_ns)}};
    return {{"duration_s", static_cast<double>(duration_ns) / second_ns},
            {"caps", caps},
            {"cap_changes", figures_cap_changes(figures)},
            {"lowered", duration_ns > 0 ? static_cast<double>(figures.lowered_ns) /
                                              static_cast<double>(duration_ns)
                                        : 0.0},
            {"measurements", figures.measurements},
            {"restarts", figures.restarts},
            {"returns", figures.returns},
            {"janks", figures.janks},
            {"judged", figures.judged}};
}

// One figure a row, from several runs of it.
struct figure_row {
    const char *name;
    const char *key;
    double scale;
    const char *unit;
};

constexpr figure_row figure_rows[] = {
    {"measurements completed", "measurements", 1, ""},
    {"measurements without a profile", "restarts", 1, ""},
    {"returns to measuring", "returns", 1, ""},
    {"cap changes", "cap_changes", 1, ""},
    {"time with a cap lowered", "lowered", 100, " %"},
    {"janks counted", "janks", 1, ""},
};

std::string figure_text(const json &figures, const figure_row &row) {
    char text[32];
    snprintf(text, sizeof(text), row.scale > 1 ? "%.1f%s" : "%.0f%s",
             figures.at(row.key).get<double>() * row.scale, row.unit);
    return text;
}

std::string cap_text(const json &figures, const std::string &name) {
    char text[32];
    const json &caps = figures.at("caps");
    snprintf(text, sizeof(text), "%.1f %%",
             caps.contains(name) ? caps[name].at("mean").get<double>() * 100 : 100.0);
    return text;
}

void print_figures(const json &before, const json *after) {
    for (const figure_row &row : figure_rows)
        printf("%-32s %10s%s\n", row.name, figure_text(before, row).c_str(),
               after != nullptr ? (" -> " + figure_text(*after, row)).c_str() : "");
    for (const auto &[name, cap] : before.at("caps").items())
        printf("%-32s %10s%s\n", shown("mean cap of " + name).c_str(),
               cap_text(before, name).c_str(),
               after != nullptr ? (" -> " + cap_text(*after, name)).c_str() : "");
}

void print_remarks(const std::string &path, const std::vector<std::string> &remarks) {
    for (const std::string &remark : remarks)
        warn(path + ": " + remark);
}

void print_side(const char *heading, const std::vector<std::string> &these,
                const std::vector<std::string> &those) {
    constexpr size_t shown_before = 5;
    constexpr size_t shown_behind = 10;
    const size_t same = static_cast<size_t>(
        std::mismatch(these.begin(), these.end(), those.begin(), those.end()).first -
        these.begin());
    printf("  %s\n", heading);
    if (these.empty())
        printf("      nothing\n");
    const size_t first = same > shown_before ? same - shown_before : 0;
    for (size_t i = first; i < these.size() && i < same + shown_behind; ++i)
        printf("    %s %s\n", i < same ? " " : i == same ? ">" : " ", shown(these[i]).c_str());
}

void print_difference(const replay_difference &difference) {
    printf("first difference at +%.3f s, line %zu: %s\n",
           static_cast<double>(difference.time_ns) / second_ns, difference.line,
           difference.happening.c_str());
    print_side("recorded:", difference.recorded, difference.replayed);
    print_side("replayed:", difference.replayed, difference.recorded);
}

json describe_counts(const replay_counts &counts) {
    return {{"happenings", counts.happenings},
            {"messages", counts.messages},
            {"intervals", counts.intervals},
            {"records", counts.records}};
}

int replay_exactly(const std::string &path, recording *file, const simulated_figures &figures,
                   const replay_options &options) {
    replay_counts counts;
    replay_difference difference;
    run_account ran;
    ran.state = daemon_state_make(figures);
    const int64_t before_ns = device_now_ns();
    const std::string wrong =
        replay_taken(file, figures, &counts, options.compare ? &difference : nullptr,
                     [&](const moment &now) { count_moment(&ran, options.why, now); });
    const double took_s = static_cast<double>(device_now_ns() - before_ns) / second_ns;
    if (!wrong.empty())
        return fail(path, wrong);
    print_remarks(path, file->remarks);
    figures_finish(&ran.figures, counts.duration_ns);
    json said = describe_figures(ran.figures, counts.duration_ns);
    if (options.why)
        said["decisions"] = ran.decisions;
    if (options.json) {
        said.update(describe_counts(counts));
        if (options.compare)
            said["different"] = difference.found;
        if (difference.found)
            said["first_difference"] = {
                {"line", difference.line},
                {"t_s", static_cast<double>(difference.time_ns) / second_ns},
                {"happening", difference.happening},
                {"recorded", difference.recorded},
                {"replayed", difference.replayed}};
        printf("%s\n", json_write(said).c_str());
        return difference.found ? exit_found : 0;
    }
    printf("%.1f s of dvxd %s: %s, %s; replayed in %.2f s, %s\n",
           static_cast<double>(counts.duration_ns) / second_ns, file->header.daemon.c_str(),
           counted(counts.messages, "message").c_str(),
           counted(counts.intervals, "interval").c_str(), took_s,
           counted(counts.records, "record").c_str());
    if (options.why)
        print_decisions(ran.decisions);
    if (difference.found) {
        print_difference(difference);
        return exit_found;
    }
    if (options.compare)
        printf("no difference in what each thread did\n");
    print_figures(said, nullptr);
    return 0;
}

// Plays a course in a process of its own; its figures as JSON, with "error" where it went wrong.
json play_modelled(const course &what, bool why) {
    const apart_result result = run_apart([&] {
        run_account ran;
        ran.state = daemon_state_make(what.setup.figures);
        const std::string wrong =
            course_play(what, [&](const moment &now) { count_moment(&ran, why, now); });
        figures_finish(&ran.figures, what.end_ns);
        json said = describe_figures(ran.figures, what.end_ns);
        if (why)
            said["decisions"] = ran.decisions;
        if (!wrong.empty())
            said["error"] = wrong;
        return json_write(said);
    });
    if (!result.error.empty())
        return {{"error", "the simulated daemon " + result.error}};
    return json_read(result.said);
}

int replay_modelled(const std::string &path, course *what, const simulated_figures &before,
                    const replay_options &options) {
    if (!what->error.empty())
        return fail(path, what->error);
    print_remarks(path, what->remarks);
    what->setup.figures = before;
    for (const std::string &setting : options.settings) {
        const std::string wrong = setting_apply_text(&what->setup.figures, setting);
        if (!wrong.empty())
            return fail("--set", wrong);
    }
    const std::string wrong = settings_check(what->setup.figures);
    if (!wrong.empty())
        return fail("--set", wrong);
    const json changed = play_modelled(*what, options.why);
    what->setup.figures = before;
    const json as_it_was = options.settings.empty() ? changed : play_modelled(*what, false);
    for (const json &figures : {changed, as_it_was})
        if (!figures.is_object() || figures.contains("error"))
            return fail(path, figures.value("error", "the simulated daemon said nothing"));
    if (options.json) {
        json said = changed;
        if (!options.settings.empty())
            said["without"] = as_it_was;
        printf("%s\n", json_write(said).c_str());
        return 0;
    }
    printf("%.1f s in the simulator, with timers of its own",
           static_cast<double>(what->end_ns) / 1e9);
    for (const std::string &setting : options.settings)
        printf("%s %s", &setting == &options.settings.front() ? "; without and with" : ",",
               setting.c_str());
    printf("\n");
    if (options.why)
        print_decisions(changed.at("decisions"));
    print_figures(as_it_was, options.settings.empty() ? nullptr : &changed);
    return 0;
}

// A log, or frame times.
int replay_other(const std::string &path, const whole_file &content,
                 const replay_options &options) {
    if (options.compare)
        return fail(path, not_comparable);
    course what = course_of_log_text(content.text);
    if (what.error.empty())
        return replay_modelled(path, &what, {}, options);
    const frame_file frames = frame_file_read_text(std::string(content.text), {});
    if (!frames.error.empty())
        return fail(path,
                    "is no recording, no log of the daemon, and as frame times: " + frames.error);
    if (frames.sampled)
        return fail(
            path,
            "its rows are samples: not every frame has one, so they tell nothing of the daemon");
    what = course_of_intervals(frames.intervals_us);
    what.remarks = frames.remarks;
    return replay_modelled(path, &what, {}, options);
}

}  // namespace

int replay_command(const std::string &path, const replay_options &options) {
    whole_file content = whole_file_open(path);
    if (!content.error.empty())
        return fail(path, content.error);
    if (!content.text.starts_with(recording_beginning))
        return replay_other(path, content, options);
    recording file = recording_of(std::move(content));
    if (!file.error.empty())
        return fail(path, file.error);
    simulated_figures figures;
    const std::string wrong = settings_of_header(file.header, &figures);
    if (!wrong.empty())
        return fail(path, wrong);
    if (file.header.taken && options.settings.empty())
        return replay_exactly(path, &file, figures, options);
    if (options.compare)
        return fail(path, not_comparable);
    course what = course_of_recording(&file);
    return replay_modelled(path, &what, figures, options);
}
