// What a report shows of a run, taken from its moments.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "tools/explain/daemon_state.h"
#include "tools/explain/why.h"
#include "tools/simulated/run_figures.h"

// A stretch of time in which something held.
struct report_band {
    std::string kind;  // measuring, suspended, screen off
    double from_s = 0;
    double to_s = 0;
};

struct report_cap_point {
    double time_s;
    std::vector<double> mhz;  // of each resource
};

struct report_scene {
    std::string activity;
    int scene = 0;
    double time_s = 0;
    int fps = 0;
    int share = 0;  // of the intervals that lie in the profile, in percent
    std::vector<std::string> buckets;
};

// A run while its moments come in.
struct report_run {
    std::string title;
    std::string device;
    std::string daemon;
    std::string rests_on;  // what the figures are of: a recording, a model
    simulated_figures figures;
    daemon_state state;
    run_figures counts;
    std::vector<double> time_s;        // of each interval's end
    std::vector<double> intervals_us;  // above 0
    std::vector<report_cap_point> caps;
    std::vector<std::vector<double>> level_s;  // time at each level of each resource
    std::vector<report_band> bands;
    std::vector<report_band> open;  // bands that have not ended yet
    std::vector<report_scene> scenes;
    std::vector<std::string> buckets;  // of the measurement that is being told
    std::vector<decision> decisions;
    std::vector<timeline_entry> timeline;
    size_t timeline_left_out = 0;
    double last_s = 0;
    double lowered_us = 0;  // of the intervals, those with a cap below full
    size_t lowered = 0;     // how many they are
};

// A run of these figures; its moments in their order; and its end, which closes what is open.
report_run report_begin(const simulated_figures &figures);
void report_take(report_run *run, const moment &now);
void report_end(report_run *run);

// The run as the page's script takes it.
nlohmann::ordered_json report_describe(const report_run &run);
