#include "tools/simulated/simulated.h"

#include <utility>

#include "simulator/simulator.h"

std::vector<timeline_entry> take_simulated() {
    constexpr timeline_kind kinds[] = {timeline_event, timeline_log, timeline_hardware,
                                       timeline_service, timeline_property};
    std::vector<timeline_entry> entries;
    for (simulator_record &record : simulator_take())
        entries.push_back({record.time_ns, kinds[record.kind], 0, std::move(record.text),
                           record.thread, record.priority});
    return entries;
}
