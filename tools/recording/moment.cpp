#include "tools/recording/moment.h"

#include <stdlib.h>

#include <algorithm>
#include <utility>

moment_kind moment_kind_of(recorded_kind kind) {
    constexpr moment_kind kinds[recorded_kinds] = {moment_start,   moment_start,  moment_start,
                                                   moment_message, moment_panel,  moment_interval,
                                                   moment_timers,  moment_thermal};
    return kinds[kind];
}

void moment_add(moment *now, timeline_entry entry) {
    told_entry told;
    if (entry.kind == timeline_log)
        told.line = log_line_match(entry.text);
    told.entry = std::move(entry);
    now->came.push_back(std::move(told));
}

uint32_t event_number(const timeline_entry &entry) {
    return static_cast<uint32_t>(strtoul(entry.text.c_str(), nullptr, 10));
}

bool moment_has_event(const moment &now, uint32_t event) {
    return std::any_of(now.came.begin(), now.came.end(), [&](const told_entry &told) {
        return told.entry.kind == timeline_event && event_number(told.entry) == event;
    });
}

const std::vector<std::string> *moment_line(const moment &now, log_line id) {
    for (auto told = now.came.rbegin(); told != now.came.rend(); ++told)
        if (told->line.row != nullptr && told->line.row->id == id)
            return &told->line.values;
    return nullptr;
}
