// The device that the lab plays on: the operating points of what caps are for, the rest of its
// power, its panel, and heat. docs/lab.md says where the figures of those that ship come from.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/simulator.h"

// The resources that caps are for, as indices of what is kept for each.
enum resource_index { resource_big, resource_little, resource_gpu, resource_count };

// A resource's row in the daemon's table ("GPU").
extern const char *const resource_names[resource_count];

// A resource's index by its name in the daemon's calls ("TMK_GPU"), or -1.
int resource_of(const std::string &name);

// What a resource draws at one of its clocks.
struct operating_point {
    double mhz = 0;
    double busy_mw = 0;
    double idle_mw = 0;  // with nothing to do; a part of `busy_mw`
};

// Heat as one mass with one way out: its temperature goes to ambient_c + k_per_w x power, by a
// factor of e nearer every `seconds`. Above `held_c` clocks come down by a point every `look_s`,
// below `free_c` they go up again.
struct heat_model {
    double ambient_c = 25;
    double k_per_w = 0;  // 0: heat does not build up
    double seconds = 60;
    double free_c = 0;
    double held_c = 0;
    double look_s = 0.1;
};

struct device_model {
    std::string name;
    std::vector<operating_point> points[resource_count];  // the highest clock first
    double base_mw = 0;                                   // of all the rest, all the time
    double panel_hz = 59.92;
    int buffers = 3;  // that frames are drawn into and seen from, 2 or 3
    heat_model heat;
    std::vector<double> cap_mhz[resource_count];  // the daemon's levels for it; none: its own
    std::string error;  // empty, or what is wrong, with its line where it has one
};

// The device that is meant where none is named: the daemon's own levels and clocks between them.
device_model device_model_default();

// The daemon's figures on a device: its levels of caps, where it has some. Empty, or what is wrong.
std::string device_model_levels(const device_model &device, simulated_figures *figures);

// What is wrong with caps at the levels of these figures on this device; empty where nothing is.
std::string device_model_check(const device_model &device, const simulated_figures &figures);

// The levels of a row of the daemon's table, in MHz.
std::vector<double> cap_levels_mhz(const tmk_freq_row &row);

// The index of the highest point whose clock is no higher than `mhz`; the lowest where none is.
size_t point_within(const std::vector<operating_point> &points, double mhz);

// The point of a resource that has this clock, or none.
std::optional<size_t> device_point(const device_model &device, int which, double mhz);
