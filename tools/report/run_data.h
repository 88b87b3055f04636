// What a report shows of a run, taken from its steps.
#pragma once

#include <string>
#include <vector>

#include "tools/explain/daemon_state.h"
#include "tools/explain/why.h"
#include "tools/recording/run_figures.h"

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

// A run while its steps come in.
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
    std::vector<record> timeline;
    size_t timeline_left_out = 0;
    double last_s = 0;
    double lowered_us = 0;  // of the intervals, those with a cap below full
    size_t lowered = 0;     // how many they are
};

// A run of these figures; its steps in their order; and its end, which closes what is open.
report_run report_begin(const simulated_figures &figures);
void report_take(report_run *run, const step &taken);
void report_end(report_run *run);

// What it came to, in numbers.
struct report_figures {
    double fps_mean = 0;
    double fps_1_low = 0;
    double above_2_median = 0;  // frames
    double median_us = 0;
    double lowered = 0;  // share of the time with a cap below full
    double cap_changes_per_minute = 0;
    double measurements = 0;  // completed
    double janks = 0;
};
report_figures report_figures_of(const report_run &run);

// Caps and what they cost, in a sentence.
std::string report_verdict(const report_run &run);
