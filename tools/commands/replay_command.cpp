// dvxctl replay: the daemon takes up a recording, a log or frame times once more.
#include "tools/commands/replay_command.h"

#include <stdio.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "tools/base/clock.h"
#include "tools/base/exit_status.h"
#include "tools/base/shown.h"
#include "tools/base/terminal.h"
#include "tools/base/words.h"
#include "tools/explain/explain_json.h"
#include "tools/explain/why.h"
#include "tools/frames/frame_file.h"
#include "tools/simulated/child_process.h"
#include "tools/simulated/log_stimulus.h"
#include "tools/simulated/settings.h"

namespace {

constexpr double second_ns = 1e9;
constexpr char not_comparable[] =
    "only a recording of what the daemon took, replayed with its own figures, can be compared";

int refuse_file(const std::string &path, const std::string &reason) {
    return refuse(path + ": " + reason);
}

// A run while it goes on.
struct replayed_run {
    run_account account;
    daemon_state state;
};

step_taker count_into(replayed_run *run, bool why) {
    return [run, why](const step &taken) {
        for (const record &came : taken.records)
            figures_count(&run->account.figures, came);
        if (why)
            for (decision &made : why_take(&run->state, taken))
                run->account.decisions.push_back(std::move(made));
    };
}

// One figure a row, from one run of it or two.
struct figure_row {
    const char *name;
    const char *format;
    double (*of)(const run_account &run);
};

constexpr figure_row figure_rows[] = {
    {"measurements completed", "%.0f",
     [](const run_account &run) { return double{1} * run.figures.measurements; }},
    {"measurements without a profile", "%.0f",
     [](const run_account &run) { return double{1} * run.figures.restarts; }},
    {"returns to measuring", "%.0f",
     [](const run_account &run) { return double{1} * run.figures.returns; }},
    {"cap changes", "%.0f",
     [](const run_account &run) { return double{1} * figures_cap_changes(run.figures); }},
    {"time with a cap lowered", "%.1f %%",
     [](const run_account &run) {
         return 100 * figures_share(run.figures.lowered_ns, run.duration_ns);
     }},
    {"janks counted", "%.0f",
     [](const run_account &run) { return static_cast<double>(run.figures.janks); }},
};

void print_row(const std::string &name, const char *format, double before, const double *after) {
    char texts[2][32] = {"", ""};
    snprintf(texts[0], sizeof(texts[0]), format, before);
    if (after != nullptr)
        snprintf(texts[1], sizeof(texts[1]), format, *after);
    printf("%-32s %10s%s%s\n", name.c_str(), texts[0], after != nullptr ? " -> " : "", texts[1]);
}

double cap_percent(const run_account &run, const std::string &name) {
    const auto cap = run.figures.caps.find(name);
    return cap != run.figures.caps.end() ? 100 * figures_cap_mean(cap->second, run.duration_ns)
                                         : 100;
}

void print_figures(const run_account &before, const run_account *after) {
    for (const figure_row &row : figure_rows) {
        const double changed = after != nullptr ? row.of(*after) : 0;
        print_row(row.name, row.format, row.of(before), after != nullptr ? &changed : nullptr);
    }
    for (const auto &[name, cap] : before.figures.caps) {
        const double changed = after != nullptr ? cap_percent(*after, name) : 0;
        print_row(shown("mean cap of " + name), "%.1f %%", cap_percent(before, name),
                  after != nullptr ? &changed : nullptr);
    }
}

void print_decisions(const run_account &run) {
    for (const decision &made : run.decisions)
        print_folded(decision_text(made), decision_indent);
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

int tell_exact(const recording &file, const exact_replay &replayed, double took_s,
               const replay_options &options) {
    const bool different = replayed.compared && replayed.difference.found;
    if (options.json) {
        printf("%s\n", exact_replay_line(replayed, options.why).c_str());
        return different ? exit_found : 0;
    }
    printf("%.1f s of dvxd %s: %s, %s; replayed in %.2f s, %s\n",
           static_cast<double>(replayed.counts.duration_ns) / second_ns, file.header.daemon.c_str(),
           counted(replayed.counts.messages, "message").c_str(),
           counted(replayed.counts.intervals, "interval").c_str(), took_s,
           counted(replayed.counts.records, "record").c_str());
    print_decisions(replayed.run);
    if (different) {
        print_difference(replayed.difference);
        return exit_found;
    }
    if (replayed.compared)
        printf("no difference in what each thread did\n");
    print_figures(replayed.run, nullptr);
    return 0;
}

int replay_recording(const std::string &path, recording *file, const simulated_figures &figures,
                     const replay_options &options) {
    exact_replay replayed;
    replayed_run run;
    run.state = daemon_state_make(figures);
    replayed.compared = options.compare;
    const int64_t before_ns = monotonic_ns();
    const std::string wrong = replay_exactly(file, figures, &replayed.counts,
                                             options.compare ? &replayed.difference : nullptr,
                                             count_into(&run, options.why));
    const double took_s = static_cast<double>(monotonic_ns() - before_ns) / second_ns;
    if (!wrong.empty())
        return refuse_file(path, wrong);
    warn_of(path, file->remarks);
    run.account.duration_ns = replayed.counts.duration_ns;
    figures_finish(&run.account.figures, run.account.duration_ns);
    replayed.run = std::move(run.account);
    return tell_exact(*file, replayed, took_s, options);
}

// Plays a stimulus. Empty, or what went wrong.
std::string play(const stimulus &given, bool why, run_account *account) {
    replayed_run run;
    run.state = daemon_state_make(given.setup.figures);
    std::string wrong = stimulus_play(given, count_into(&run, why));
    run.account.duration_ns = given.end_ns;
    figures_finish(&run.account.figures, given.end_ns);
    *account = std::move(run.account);
    return wrong;
}

// Figures as a child answers them: the counts, then each cap with its name.
struct packed_counts {
    int measurements, given_up, restarts, returns;
    long janks, judged;
    int64_t lowered_ns;
};

struct packed_cap {
    char name[64];
    cap_figures cap;
};

std::string pack(const run_figures &figures) {
    std::string packed = child_pack(packed_counts{figures.measurements, figures.given_up,
                                                  figures.restarts, figures.returns, figures.janks,
                                                  figures.judged, figures.lowered_ns});
    for (const auto &[name, cap] : figures.caps) {
        packed_cap one = {"", cap};
        name.copy(one.name, sizeof(one.name) - 1);
        packed += child_pack(one);
    }
    return packed;
}

bool unpack(const std::string &packed, run_figures *figures) {
    packed_counts counts;
    packed_cap cap;
    if (!child_unpack(packed, &counts))
        return false;
    figures->measurements = counts.measurements;
    figures->given_up = counts.given_up;
    figures->restarts = counts.restarts;
    figures->returns = counts.returns;
    figures->janks = counts.janks;
    figures->judged = counts.judged;
    figures->lowered_ns = counts.lowered_ns;
    for (size_t at = sizeof(counts); child_unpack(packed.substr(at), &cap); at += sizeof(cap))
        figures->caps[cap.name] = cap.cap;
    return true;
}

// Plays it in a process of its own, as this one has a daemon by then; its figures alone come back.
std::string play_in_child(const stimulus &given, run_account *account) {
    constexpr char good = '=';
    const child_result child = run_in_child([&] {
        run_account played;
        const std::string wrong = play(given, false, &played);
        return wrong.empty() ? good + pack(played.figures) : wrong;
    });
    account->duration_ns = given.end_ns;
    if (!child.error.empty())
        return "the simulated daemon " + child.error;
    return child.output[0] == good && unpack(child.output.substr(1), &account->figures)
               ? ""
               : child.output;
}

int replay_modelled(const std::string &path, stimulus *given, const simulated_figures &figures,
                    const replay_options &options) {
    const bool changes = !options.settings.empty();
    run_account run;
    run_account without;
    if (!given->error.empty())
        return refuse_file(path, given->error);
    warn_of(path, given->remarks);
    simulated_figures changed = figures;
    std::string wrong = settings_apply_all(&changed, options.settings);
    if (!wrong.empty())
        return refuse_file("--set", wrong);
    given->setup.figures = figures;
    if (changes)
        wrong = play_in_child(*given, &without);
    given->setup.figures = changed;
    if (wrong.empty())
        wrong = play(*given, options.why, &run);
    if (!wrong.empty())
        return refuse_file(path, wrong);
    if (options.json) {
        printf("%s\n",
               modelled_replay_line(run, changes ? &without : nullptr, options.why).c_str());
        return 0;
    }
    printf("%.1f s in the simulator, with timers of its own",
           static_cast<double>(given->end_ns) / second_ns);
    for (const std::string &setting : options.settings)
        printf("%s %s", &setting == &options.settings.front() ? "; without and with" : ",",
               setting.c_str());
    printf("\n");
    print_decisions(run);
    print_figures(changes ? without : run, changes ? &run : nullptr);
    return 0;
}

// A log, or frame times.
int replay_other(const std::string &path, const whole_file &content,
                 const replay_options &options) {
    if (options.compare)
        return refuse_file(path, not_comparable);
    stimulus given = stimulus_of_log_text(content.text);
    if (given.error.empty())
        return replay_modelled(path, &given, {}, options);
    const frame_file frames = frame_file_read_text(std::string(content.text), {});
    if (!frames.error.empty())
        return refuse_file(
            path, "is no recording, no log of the daemon, and as frame times: " + frames.error);
    if (frames.sampled)
        return refuse_file(
            path,
            "its rows are samples: not every frame has one, so they tell nothing of the daemon");
    given = stimulus_of_intervals(frames.intervals_us);
    given.remarks = frames.remarks;
    return replay_modelled(path, &given, {}, options);
}

}  // namespace

int replay_command(const std::string &path, const replay_options &options) {
    whole_file content = whole_file_open(path);
    if (!content.error.empty())
        return refuse_file(path, content.error);
    if (!content.text.starts_with(recording_beginning))
        return replay_other(path, content, options);
    recording file = recording_of(std::move(content));
    if (!file.error.empty())
        return refuse_file(path, file.error);
    simulated_figures figures;
    const std::string wrong = settings_of_header(file.header, &figures);
    if (!wrong.empty())
        return refuse_file(path, wrong);
    if (file.header.taken && options.settings.empty())
        return replay_recording(path, &file, figures, options);
    if (options.compare)
        return refuse_file(path, not_comparable);
    stimulus given = stimulus_of_recording(&file);
    return replay_modelled(path, &given, figures, options);
}

void add_replay_command(CLI::App *parent, command_context *context) {
    struct arguments {
        std::string file;
        replay_options options;
    };
    auto given = std::make_shared<arguments>();
    CLI::App *command =
        parent->add_subcommand("replay", "Let the daemon take up a recording once more, simulated")
            ->group("Recordings");
    command->add_option("FILE", given->file, "A recording; - for standard input")->required();
    command->add_flag("--compare", given->options.compare,
                      "Compare what follows with the recording");
    command
        ->add_option("--set", given->options.settings,
                     "NAME=VALUE: another value for one of the analyser's figures")
        ->allow_extra_args(false);
    command->add_flag("--why", given->options.why, "Tell each decision in a sentence");
    command->add_flag("--json", given->options.json, "Print the figures as one JSON object");
    command->callback([=] { context->exit_code = replay_command(given->file, given->options); });
}
