// Lets one thing after another fail, over the start and a day that reaches every feature, in the
// simulator, and tells what came of it: an end with its line, or a daemon that serves the rest.
// Anything else is a fault of the daemon, and the exit status says so.
#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <set>

#include "device/hardware_conf.h"
#include "simulator/allocation.h"
#include "simulator/simulator.h"
#include "tools/scenario/scenario.h"
#include "tools/scenario/target.h"

namespace {

// How a run ended, as its process's status.
enum outcome { outcome_served, outcome_ended, outcome_nothing_failed, outcome_wrong };

// What fails, and how many runs ended how.
struct outcomes {
    const char *what;
    int ends[outcome_wrong + 1] = {};
};

const std::set<std::string> core_lines = {"Failed to init event manager..\n",
                                          "Failed to alloc\n",
                                          "Failed to init server..\n",
                                          "Failed to init kernel event monitor..\n",
                                          "Failed to init running app manager..\n",
                                          "Failed to init policy manager...\n"};

scenario_file the_day;

// The daemon's life with the fault, in this process. The start, on the main thread, says why it
// cannot go on; a daemon that serves takes messages to the end: one of a code that there is not has
// its line.
outcome live(const happening &fault) {
    const target daemon = make_simulator_target();
    static_cast<void>(daemon.start({fault}));  // what fails comes as a record
    bool ended = false;
    bool says_why = false;
    for (const record &came : daemon.records()) {
        ended |= came.kind == record_kind::end;
        says_why |= came.kind == record_kind::log && came.thread_name == "dvxd" &&
                    core_lines.contains(came.text);
    }
    if (ended)
        return says_why ? outcome_ended : outcome_wrong;
    for (const scenario_step &step : the_day.scenarios[0].steps)
        if (says_why || daemon.take_up(step.given).kind != failure::none)
            return outcome_wrong;
    if (fault.name == "allocation" && !allocation_has_failed())
        return outcome_nothing_failed;
    daemon.records();
    dvx_message last;
    dvx_message_init(&last, DVX_CLIENT_POWERHAL, 99);
    take_up(make_message_happening(last));
    return daemon.records().size() == 1 ? outcome_served : outcome_wrong;
}

// One run with the fault, a line of a scenario. False when there was nothing to fail.
bool run(const std::string &fault, outcomes *result) {
    happening failing;
    const bool known = read_happening(fault, &failing).empty();
    fflush(stdout);
    const pid_t child = known ? fork() : -1;
    if (child == 0)
        _exit(live(failing));
    int status = -1;
    waitpid(child, &status, 0);
    const int how = child > 0 && WIFEXITED(status) ? WEXITSTATUS(status) : outcome_wrong;
    ++result->ends[how < outcome_wrong ? how : outcome_wrong];
    if (how >= outcome_wrong)
        fprintf(stderr, "%s: neither ended as documented nor served; status %d\n", fault.c_str(),
                status);
    return how != outcome_nothing_failed;
}

int report(const outcomes &result) {
    const int *ends = result.ends;
    printf("| %s | %d | %d | %d | %d |\n", result.what,
           ends[outcome_ended] + ends[outcome_served] + ends[outcome_wrong], ends[outcome_ended],
           ends[outcome_served], ends[outcome_wrong]);
    return ends[outcome_wrong];
}

}  // namespace

int main(int argc, char **argv) {
    std::ifstream input(argc == 2 ? argv[1] : "");
    the_day = read_scenarios(input);
    if (!the_day.error.empty()) {
        fprintf(stderr, "usage: faults SCENARIO; %s\n", the_day.error.c_str());
        return 2;
    }
    printf(
        "| what fails | runs | ended with 255 and its line | served the rest | neither |\n"
        "|---|---|---|---|---|\n");
    outcomes allocations = {"each allocation in turn"};
    for (int k = 1; run("failing allocation " + std::to_string(k), &allocations); ++k) {
    }
    outcomes threads = {"each thread"};
    for (const char *thread :
         {"thermal_check", "fia", "client_listener", "kevent_monitor", "policy", "timer"})
        run(std::string("failing thread ") + thread, &threads);
    outcomes sockets = {"the socket, its listening"};
    for (const char *step : {"socket", "listen"})
        run(std::string("failing ") + step, &sockets);
    outcomes libraries = {"each library missing"};
    for (const char *library : {"libhwresource.so", "libdvxcc.so", "libqcopt.so"})
        run(std::string("without ") + library, &libraries);
    outcomes symbols = {"each symbol missing"};
    outcomes answers = {"each library call answering -1"};
    for (const device_call &call : device_calls_known) {
        if (std::string(call.library) == "libthermalclient.so")  // the daemon is linked with it
            continue;
        run(std::string("without ") + call.name, &symbols);
        run(std::string("answer ") + call.name + " -1", &answers);
    }
    int wrong = 0;
    for (const outcomes &each : {allocations, threads, sockets, libraries, symbols, answers})
        wrong += report(each);
    return wrong == 0 ? 0 : 1;
}
