#include "tools/scenario/play.h"

#include <stdio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <deque>
#include <filesystem>
#include <fstream>

#include "tools/base/exit_status.h"
#include "tools/base/shown.h"
#include "tools/recording/timeline.h"
#include "tools/scenario/scenario_match.h"

namespace {

constexpr size_t records_before = 10;  // that a failure shows
constexpr useconds_t pause_us = 20000;
constexpr int pause_ms = 20;

// What is kept of the records while a scenario is played.
struct kept_records {
    std::vector<record> since;  // the last expectation
    std::deque<record> before;
};

void take_records(const target &on, const audience &told, kept_records *kept) {
    for (record &came : on.records()) {
        if (told.on_record != nullptr)
            told.on_record(came);
        kept->since.push_back(std::move(came));
    }
}

void settle(kept_records *kept) {
    for (record &came : kept->since)
        kept->before.push_back(std::move(came));
    while (kept->before.size() > records_before)
        kept->before.pop_front();
    kept->since.clear();
}

std::string say_record(const record &came) {
    return std::string("    ").append(record_word(came.kind)).append(" ").append(shown(came.text)) +
           (came.thread_name.empty() ? "\n" : "  [" + came.thread_name + "]\n");
}

std::string say_records(const char *heading, const std::vector<record> &records) {
    std::string said = std::string("  ") + heading + (records.empty() ? " nothing\n" : "\n");
    for (const record &came : records)
        said += say_record(came);
    return said;
}

std::string explain(const scenario &played, const scenario_step &step, const std::string &reason,
                    const kept_records &kept) {
    return shown(played.name) + "\n  line " + std::to_string(step.line) + ": " + shown(step.text) +
           "\n  " + reason + "\n" + say_records("came:", kept.since) +
           say_records("before it:", {kept.before.begin(), kept.before.end()});
}

// What an expectation says of the records, when those that are on their way have come.
std::string await(const target &on, const scenario_step &step, const audience &told,
                  kept_records *kept) {
    take_records(on, told, kept);
    std::string wrong = check_expectation(step.then, kept->since);
    // What must not follow needs a look at what is still held back, what must needs patience.
    for (int waited_ms = 0; on.patience_ms > 0 && waited_ms < on.patience_ms;
         waited_ms += pause_ms) {
        if (wrong.empty() && waited_ms > 2 * timeline_hold_back_ns / 1000000)
            break;
        usleep(pause_us);
        take_records(on, told, kept);
        wrong = check_expectation(step.then, kept->since);
    }
    return wrong;
}

// Starts the daemon on a device that is as the first lines say; `*at` is left behind them. The
// records of a start that expects nothing itself are nobody's.
std::string begin(const target &on, const scenario &played, size_t *at, kept_records *kept) {
    std::vector<happening> before;
    while (*at < played.steps.size() && is_preparation(played.steps[*at].given) &&
           !played.steps[*at].expects)
        before.push_back(played.steps[(*at)++].given);
    std::string error = on.start(before).reason;
    if (*at < played.steps.size() && played.steps[*at].given.kind != happening_kind::start) {
        take_records(on, {}, kept);
        settle(kept);
    }
    return error;
}

void show_step(const scenario_step &step) {
    printf("%s\n", shown(step.text).c_str());
}

void show_record(const record &came) {
    printf("%s", say_record(came).c_str());
}

// Plays a scenario in a process of its own, where a simulated daemon can be started.
bool play_apart(const scenario &played, const audience &told) {
    fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        const std::string wrong = play_scenario(make_simulator_target(), played, told);
        printf("%s", wrong.c_str());
        fflush(stdout);
        _exit(wrong.empty() ? 0 : 1);
    }
    int status = -1;
    if (child < 0 || waitpid(child, &status, 0) != child)
        return false;
    if (WIFSIGNALED(status))
        printf("%s\n  the daemon ended by signal %d\n", played.name.c_str(), WTERMSIG(status));
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace

std::string play_scenario(const target &on, const scenario &played, const audience &told) {
    kept_records kept;
    size_t at = 0;
    std::string wrong = begin(on, played, &at, &kept);
    if (!wrong.empty())
        return played.name + "\n  " + wrong + "\n";
    for (; wrong.empty() && at < played.steps.size(); ++at) {
        const scenario_step &step = played.steps[at];
        if (!step.story.empty()) {
            if (told.on_part_over != nullptr)
                told.on_part_over();
            if (told.on_story != nullptr)
                told.on_story(step.story);
            continue;
        }
        if (told.on_step != nullptr)
            told.on_step(step);
        wrong = on.take_up(step.given).reason;
        take_records(on, told, &kept);
        if (wrong.empty() && step.expects)
            wrong = await(on, step, told, &kept);
        if (!wrong.empty())
            wrong = explain(played, step, wrong, kept);
        else if (step.expects)
            settle(&kept);
    }
    if (told.on_part_over != nullptr)
        told.on_part_over();
    on.stop();
    return wrong;
}

int play_file(const std::string &path, const std::string &only, const std::string &root,
              double speed, bool show) {
    std::ifstream input(path);
    std::error_code error;
    const bool is_directory = std::filesystem::is_directory(path, error);
    if (!input || is_directory)
        return refuse("cannot read " + path + (is_directory ? ": a directory, not a file" : ""));
    const scenario_file file = read_scenarios(input);
    if (!file.error.empty())
        return refuse(path + ", " + file.error);
    const audience told = show ? audience{show_step, nullptr, show_record, nullptr} : audience{};
    int played = 0;
    int held = 0;
    for (const scenario &each : file.scenarios) {
        if (!only.empty() && each.name != only)
            continue;
        ++played;
        if (show)
            printf("= %s\n", shown(each.name).c_str());
        if (speed > 0) {
            const std::string wrong = play_scenario(make_device_target(root, speed), each, told);
            printf("%s", wrong.c_str());
            held += wrong.empty() ? 1 : 0;
        } else {
            held += play_apart(each, told) ? 1 : 0;
        }
    }
    if (played == 0)
        return refuse(path + " has no scenario named '" + only + "'");
    printf("%d of %d scenarios held\n", held, played);
    return held == played ? 0 : 1;
}
