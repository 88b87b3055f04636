// The interval decision: what every frame interval that the kernel reports leads to. In PM it feeds
// the measurement, in AM it tests the interval against the profile and steps the caps.
#pragma once

#include <cstdint>

// One interval in microseconds. Called on the kernel event monitor's thread; takes `fia_mutex`, and
// does nothing while the records are not published.
void notify_fia_interval_changed(int32_t interval_us);
