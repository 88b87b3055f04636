#include "tools/commands/day.h"

#include <stdio.h>
#include <stdlib.h>

#include <algorithm>
#include <fstream>
#include <utility>

#include "device/virtual_device.h"
#include "tools/base/clock.h"
#include "tools/base/exit_status.h"
#include "tools/base/files.h"
#include "tools/base/shown.h"
#include "tools/device/delivery.h"
#include "tools/device/timeline_printer.h"
#include "tools/recording/effects.h"
#include "tools/report/report.h"
#include "tools/scenario/play.h"

namespace {

// The day's scenario, beside the programs.
constexpr char day_file[] = "../share/dvxd/day.scenario";

// What is told of the present step.
struct telling {
    bool all = false;  // the whole timeline
    int steps = 0;
    effects present;
    std::string mode;             // the app mode that was told last
    std::vector<effect> changes;  // one a setting, its values in a row
    timeline line;                // where the day began
    timeline_printer printer;
};

// Keeps a change with those before it of the same setting: "45 -> 60 -> 45"; what a service is told
// stands behind what it was told before.
void keep_change(std::vector<effect> *changes, effect change, bool is_told) {
    if (is_told)
        change = {"tells the " + change.setting.substr(0, change.setting.find(',')), "",
                  change.value, ""};
    for (effect &kept : *changes)
        if (kept.setting == change.setting) {
            kept.value += (is_told ? ", " : " -> ") + change.value;
            return;
        }
    changes->push_back(change);
}

// A step in short: its messages in words at once, the app mode and what changed in effect at its
// end.
void tell_record(telling *day, const record &came) {
    if (day->all) {
        timeline_print(&day->printer, came);
        return;
    }
    if (came.kind == record_kind::message) {
        printf("    > %s\n", shown(came.text.substr(0, came.text.find("  ("))).c_str());
        return;
    }
    const char *mode = mode_entered(came);
    if (mode != nullptr && day->mode != mode)
        keep_change(&day->changes, {"app mode", std::exchange(day->mode, mode), mode, ""}, false);
    const effect change = note_effect(&day->present, came);
    if (!change.setting.empty())
        keep_change(&day->changes, change, came.kind == record_kind::service);
}

void tell_changes(telling *day) {
    timeline_flush(&day->printer);
    std::stable_partition(day->changes.begin(), day->changes.end(),
                          [](const effect &change) { return change.setting == "app mode"; });
    for (const effect &change : day->changes)
        printf("    %s\n", shown(change.setting + "  " + change.before +
                                 (change.before.empty() ? "" : " -> ") + change.value + change.unit)
                               .c_str());
    day->changes.clear();
}

void tell_story(telling *day, const std::string &text) {
    printf("\n%s%d. %s%s\n", day->printer.colour ? "\033[1m" : "", ++day->steps, text.c_str(),
           day->printer.colour ? "\033[0m" : "");
    fflush(stdout);
}

void say_what_to_try(const std::string &root) {
    printf(
        "\nThe device and its daemon stay up. To drive them from a shell here:\n\n"
        "    export DVXD_ROOT=%s PATH=%s:$PATH\n"
        "    dvxctl watch --brief                (in a terminal of its own)\n"
        "    dvxctl activity com.example.racer/.Race\n"
        "    dvxctl window com.example.racer\n"
        "    dvxctl optimizer on\n"
        "    dvxctl game on --fps 30 --tuner 1\n"
        "    dvxctl device panel off\n"
        "    dvxctl device stop\n",
        shell_quoted(root).c_str(), shell_quoted(sibling_program("")).c_str());
}

// The day as a page, from what its daemon noted.
void write_report(const std::string &root) {
    const char *notes = getenv("DVXD_RECORD");
    report_options options;
    options.files = {notes != nullptr ? notes : root + device_recording};
    options.out = root + "/report.html";
    printf("Its report: ");
    fflush(stdout);
    report_command(options);
}

}  // namespace

int play_day(const std::string &root, bool stay, bool all) {
    std::ifstream input(sibling_program(day_file));
    const scenario_file file = read_scenarios(input);
    if (!file.error.empty())
        return fail(sibling_program(day_file) + ", " + file.error);
    telling day;
    day.all = all;
    day.present = make_effects();
    day.line.root = root;
    day.line.start_ns = wall_ns();
    day.printer = make_timeline_printer(&day.line, false);
    printf("A day with dvxd on a virtual device at %s\n", shown(root).c_str());
    const std::string wrong = play_scenario(
        make_device_target(root, 1, stay), file.scenarios[0],
        {nullptr, [&](const std::string &text) { tell_story(&day, text); },
         [&](const record &came) { tell_record(&day, came); }, [&] { tell_changes(&day); }});
    // Without a daemon of its own the day has nothing to tell, and the device's recording is
    // another's.
    if (day.steps == 0) {
        fprintf(stderr, "%s", wrong.c_str());
        return exit_found;
    }
    printf("\n%s%s\n", wrong.c_str(),
           wrong.empty() ? "Everything that should have reached the hardware and the services did."
                         : "Something that should have reached the hardware or a service did not.");
    write_report(root);
    if (stay)
        say_what_to_try(root);
    return wrong.empty() ? 0 : 1;
}
