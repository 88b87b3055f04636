#include "tools/simulated/run_figures.h"

#include <stdio.h>
#include <string.h>

#include <algorithm>

#include "tools/recording/cap_call.h"

namespace {

// Caps stay as they are until `time_ns`.
void pass_time(run_figures *figures, int64_t time_ns) {
    const int64_t passed_ns = std::max<int64_t>(time_ns - figures->last_ns, 0);
    bool lowered = false;
    for (auto &[name, cap] : figures->caps) {
        cap.frequency_ns += cap.now * static_cast<double>(passed_ns);
        if (cap.now < cap.full) {
            cap.lowered_ns += passed_ns;
            lowered = true;
        }
    }
    if (lowered)
        figures->lowered_ns += passed_ns;
    figures->last_ns = std::max(figures->last_ns, time_ns);
}

void count_cap(run_figures *figures, const cap_call &call, int64_t time_ns) {
    pass_time(figures, time_ns);
    cap_figures &cap = figures->caps[call.name];
    if (cap.full == 0)
        // Nothing was asked before: the resource stood at what is set first.
        cap.frequency_ns = call.hertz * static_cast<double>(time_ns);
    else if (call.hertz != cap.now)
        ++cap.changes;
    cap.full = std::max(cap.full, call.hertz);
    cap.now = call.hertz;
}

void count_line(run_figures *figures, const std::string &line) {
    int share;
    int janks;
    int judged;
    char end = '\0';
    if (line.starts_with("PM Complete!"))
        ++figures->measurements;
    else if (line.starts_with("PM Restart!"))
        ++figures->restarts;
    else if (line.ends_with("! PM Start") || line.ends_with("! PM Start\n"))
        ++figures->returns;
    else if (sscanf(line.c_str(), "%d%% (%d/%d) Jank%c", &share, &janks, &judged, &end) == 4 &&
             end == '!') {
        figures->janks += janks;
        figures->judged += judged;
    }
}

}  // namespace

void figures_count(run_figures *figures, const timeline_entry &entry) {
    cap_call cap;
    if (entry.kind == timeline_hardware && cap_call_read(entry.text, &cap))
        count_cap(figures, cap, entry.time_ns);
    else if (entry.kind == timeline_log)
        count_line(figures, entry.text);
}

void figures_finish(run_figures *figures, int64_t end_ns) {
    pass_time(figures, end_ns);
}

int figures_cap_changes(const run_figures &figures) {
    int changes = 0;
    for (const auto &[name, cap] : figures.caps)
        changes += cap.changes;
    return changes;
}

double figures_cap_mean(const cap_figures &cap, int64_t duration_ns) {
    const double whole = cap.full * static_cast<double>(duration_ns);
    return whole > 0 ? cap.frequency_ns / whole : 1;
}
