// Notes every event that is raised, in order.
#pragma once

#include <cstdint>
#include <vector>

// Listens to every event from now on. After init_event_manager.
void record_events(void);

// What was raised since the last call.
std::vector<int> take_raised(void);
