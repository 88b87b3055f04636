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

namespace {

constexpr size_t records_before = 10;  // that a failure shows
constexpr useconds_t pause_us = 20000;
constexpr int pause_ms = 20;

// What is kept of the records while a scenario is played.
struct course {
    std::vector<timeline_entry> since;  // the last expectation
    std::deque<timeline_entry> before;
};

void follow(const player &by, const audience &told, course *now) {
    for (timeline_entry &entry : by.take()) {
        if (told.record != nullptr)
            told.record(entry);
        now->since.push_back(std::move(entry));
    }
}

void settle(course *now) {
    for (timeline_entry &entry : now->since)
        now->before.push_back(std::move(entry));
    while (now->before.size() > records_before)
        now->before.pop_front();
    now->since.clear();
}

std::string say_record(const timeline_entry &record) {
    return std::string("    ")
               .append(timeline_kind_name(record.kind))
               .append(" ")
               .append(shown(record.text)) +
           (record.thread_name.empty() ? "\n" : "  [" + record.thread_name + "]\n");
}

std::string say_records(const char *heading, const std::vector<timeline_entry> &records) {
    std::string said = std::string("  ") + heading + (records.empty() ? " nothing\n" : "\n");
    for (const timeline_entry &record : records)
        said += say_record(record);
    return said;
}

std::string explain(const scenario &what, const scenario_step &step, const std::string &reason,
                    const course &now) {
    return shown(what.name) + "\n  line " + std::to_string(step.line) + ": " + shown(step.text) +
           "\n  " + reason + "\n" + say_records("came:", now.since) +
           say_records("before it:", {now.before.begin(), now.before.end()});
}

// What an expectation says of the records, when those that are on their way have come.
std::string await(const player &by, const scenario_step &step, const audience &told, course *now) {
    follow(by, told, now);
    std::string wrong = check_expectation(step.then, now->since);
    // What must not follow needs a look at what is still held back, what must needs patience.
    for (int waited_ms = 0; by.patience_ms > 0 && waited_ms < by.patience_ms;
         waited_ms += pause_ms) {
        if (wrong.empty() && waited_ms > 2 * timeline_hold_back_ns / 1000000)
            break;
        usleep(pause_us);
        follow(by, told, now);
        wrong = check_expectation(step.then, now->since);
    }
    return wrong;
}

// Starts the daemon on a device that is as the first lines say; `*at` is left behind them. The
// records of a start that expects nothing itself are nobody's.
std::string begin(const player &by, const scenario &what, size_t *at, course *now) {
    std::vector<happening> before;
    while (*at < what.steps.size() && is_preparation(what.steps[*at].what) &&
           !what.steps[*at].expects)
        before.push_back(what.steps[(*at)++].what);
    std::string error = by.start(before);
    if (*at < what.steps.size() && what.steps[*at].what.kind != happening_start) {
        follow(by, {}, now);
        settle(now);
    }
    return error;
}

void show_step(const scenario_step &step) {
    printf("%s\n", shown(step.text).c_str());
}

void show_record(const timeline_entry &entry) {
    printf("%s", say_record(entry).c_str());
}

// Plays a scenario in a process of its own, where a simulated daemon can be started.
bool play_apart(const scenario &what, const audience &told) {
    fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        const std::string wrong = play_scenario(make_simulator_player(), what, told);
        printf("%s", wrong.c_str());
        fflush(stdout);
        _exit(wrong.empty() ? 0 : 1);
    }
    int status = -1;
    if (child < 0 || waitpid(child, &status, 0) != child)
        return false;
    if (WIFSIGNALED(status))
        printf("%s\n  the daemon ended by signal %d\n", what.name.c_str(), WTERMSIG(status));
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace

std::string play_scenario(const player &by, const scenario &what, const audience &told) {
    course now;
    size_t at = 0;
    std::string wrong = begin(by, what, &at, &now);
    if (!wrong.empty())
        return what.name + "\n  " + wrong + "\n";
    for (; wrong.empty() && at < what.steps.size(); ++at) {
        const scenario_step &step = what.steps[at];
        if (step.what.kind == happening_story) {
            if (told.part_over != nullptr)
                told.part_over();
            if (told.story != nullptr)
                told.story(step.what.name);
            continue;
        }
        if (told.step != nullptr)
            told.step(step);
        wrong = by.play(step.what);
        follow(by, told, &now);
        if (wrong.empty() && step.expects)
            wrong = await(by, step, told, &now);
        if (!wrong.empty())
            wrong = explain(what, step, wrong, now);
        else if (step.expects)
            settle(&now);
    }
    if (told.part_over != nullptr)
        told.part_over();
    by.stop();
    return wrong;
}

int play_file(const std::string &path, const std::string &only, const std::string &root,
              double speed, bool show) {
    std::ifstream input(path);
    std::error_code error;
    const bool is_directory = std::filesystem::is_directory(path, error);
    if (!input || is_directory) {
        return refuse("cannot read " + path + (is_directory ? ": a directory, not a file" : ""));
    }
    const scenario_file file = read_scenarios(input);
    if (!file.error.empty()) {
        return refuse(path + ", " + file.error);
    }
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
            const std::string wrong = play_scenario(make_device_player(root, speed), each, told);
            printf("%s", wrong.c_str());
            held += wrong.empty() ? 1 : 0;
        } else {
            held += play_apart(each, told) ? 1 : 0;
        }
    }
    if (played == 0) {
        return refuse(path + " has no scenario named '" + only + "'");
    }
    printf("%d of %d scenarios held\n", held, played);
    return held == played ? 0 : 1;
}
