// Decisions, states and replays as JSON, with the fields of docs/recordings.md.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "tools/explain/status.h"
#include "tools/recording/run_figures.h"
#include "tools/simulated/replay.h"

// A decision as a value, for whoever holds many.
nlohmann::ordered_json decision_json(const decision &made);

// The same on one line.
std::string decision_line(const decision &made);
std::string status_line(const status &known);

// What a replay came to.
struct run_account {
    run_figures figures;
    int64_t duration_ns = 0;
    std::vector<decision> decisions;  // where they were asked for
};

struct exact_replay {
    run_account run;
    replay_counts counts;
    bool compared = false;
    replay_difference difference;
};

// On one line each; `without` is the run without the settings, null where there are none.
std::string exact_replay_line(const exact_replay &replayed, bool why);
std::string modelled_replay_line(const run_account &run, const run_account *without, bool why);
