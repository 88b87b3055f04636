#include "tools/recording/run_figures.h"

#include <algorithm>

#include "tools/recording/cap_call.h"

namespace {

// Caps stay as they are until `time_ns`.
void pass_time(run_figures *figures, int64_t time_ns) {
    const int64_t passed_ns = std::max<int64_t>(time_ns - figures->last_ns, 0);
    bool lowered = false;
    for (auto &[name, cap] : figures->caps) {
        cap.frequency_ns += cap.present * static_cast<double>(passed_ns);
        if (cap.present < cap.full) {
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
    else if (call.hertz != cap.present)
        ++cap.changes;
    cap.full = std::max(cap.full, call.hertz);
    cap.present = call.hertz;
}

void count_line(run_figures *figures, const record &line) {
    switch (line.row->id) {
        case log_line::measure_complete:
            ++figures->measurements;
            break;
        case log_line::measure_over:
            ++figures->given_up;
            break;
        case log_line::measure_again:
            ++figures->restarts;
            break;
        case log_line::active_scene_changed:
        case log_line::active_too_low:
        case log_line::active_too_often_low:
            ++figures->returns;
            break;
        case log_line::active_jank_run:
            figures->janks += record_integer(line, 0);
            break;
        case log_line::active_janks:
            figures->judged += record_integer(line, 2);
            break;
        default:
            break;
    }
}

}  // namespace

void figures_count(run_figures *figures, const record &came) {
    cap_call cap;
    if (cap_call_read(came, &cap) && !record_is_refused(came))
        count_cap(figures, cap, came.time_ns);
    else if (came.row != nullptr)
        count_line(figures, came);
}

void figures_finish(run_figures *figures, int64_t end_ns) {
    pass_time(figures, end_ns);
}

double figures_share(int64_t time_ns, int64_t duration_ns) {
    return duration_ns > 0 ? static_cast<double>(time_ns) / static_cast<double>(duration_ns) : 0;
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
