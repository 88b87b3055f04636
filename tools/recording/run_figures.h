// What a run of the daemon came to, counted from its calls and lines.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "tools/recording/record.h"

struct cap_figures {
    double full = 0;     // the frequency that was set first, Hz
    double present = 0;  // Hz
    int changes = 0;
    int64_t lowered_ns = 0;   // time below full
    double frequency_ns = 0;  // integral of the cap over time
};

struct run_figures {
    std::map<std::string, cap_figures> caps;  // by resource
    int measurements = 0;                     // completed
    int given_up = 0;                         // after too many that found no profile
    int restarts = 0;                         // of a measurement that found no profile
    int returns = 0;                          // to measuring, from caps that were held
    long janks = 0;                           // each run of them, once it is over
    long judged = 0;                          // intervals in the daemon's reports
    int64_t lowered_ns = 0;                   // any cap below full
    int64_t last_ns = 0;
};

// Counts a record; those before it have been counted. Times count from 0.
void figures_count(run_figures *figures, const record &came);

// The run's end.
void figures_finish(run_figures *figures, int64_t end_ns);

// A time as a share of the run, from 0 to 1.
double figures_share(int64_t time_ns, int64_t duration_ns);

// Changes of all caps, and the mean of a cap as a share of full, from 0 to 1; 1 where it never
// moved.
int figures_cap_changes(const run_figures &figures);
double figures_cap_mean(const cap_figures &cap, int64_t duration_ns);
