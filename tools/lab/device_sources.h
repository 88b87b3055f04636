// What a phone itself says of its operating points: the kernel's energy model, the tables of its
// device tree, and the power profile of its platform.
#pragma once

#include <string_view>

#include "tools/lab/device_model.h"

// Reads one of these, told by its content, into `device`, whose points are in no order; false where
// the text is none of them.
//
// - the energy model: the lines of `grep -r . /sys/kernel/debug/energy_model`
// - a device tree's source with its `operating-points-v2` tables and `dynamic-power-coefficient`s
// - `power_profile.xml` with `cpu.core_speeds.cluster0` and `cpu.core_power.cluster0` (mA at the
//   battery, taken as 3.85 V)
//
// The CPU cluster of the highest power is CLUSTER1, that of the lowest CLUSTER0; a part without a
// GPU has the default device's. What a rail draws at rest is in none of them, and 0 here.
bool device_source_read(std::string_view text, device_model *device);
