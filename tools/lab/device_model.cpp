#include "tools/lab/device_model.h"

#include <algorithm>
#include <cmath>

#include "tools/base/words.h"
#include "tools/simulated/settings.h"

namespace {

constexpr double khz = 1e3;
constexpr double hz = 1e6;
constexpr double mhz_slack = 0.5;  // between a cap and the clock that it means

// Full power of the default device, in mW, all of it busy, and leakage: a phone's big cores in a
// game, its little ones beside it, its GPU.
struct power_row {
    double busy_mw;
    double leakage_mw;
};
constexpr power_row default_powers[resource_count] = {{2000, 120}, {300, 20}, {2200, 130}};

// The voltage at a share of the highest clock, as a share of the highest: fitted to the two chips
// that ship, whose rails have a floor.
double share_of_voltage(double share_of_clock) {
    return std::max(0.64, 1 - 0.7 * (1 - share_of_clock));
}

operating_point point_at(const power_row &power, double mhz, double full_mhz) {
    const double share = mhz / full_mhz;
    const double voltage = share_of_voltage(share);
    const double idle_mw = power.leakage_mw * voltage;
    return {mhz, power.busy_mw * share * voltage * voltage + idle_mw, idle_mw};
}

double unit_of(const tmk_freq_row &row) {
    return row.type == freq_type_gpu ? hz : khz;
}

}  // namespace

const char *const resource_names[resource_count] = {"CLUSTER1", "CLUSTER0", "GPU"};

int resource_of(const std::string &name) {
    for (int i = 0; i < resource_count; ++i)
        if (name == std::string("TMK_") + resource_names[i])
            return i;
    return -1;
}

device_model device_model_default() {
    constexpr int steps = 20;  // of its clocks, beside those of the caps
    device_model device;
    device.name = "default";
    const simulated_figures own;
    for (const tmk_freq_row &row : own.rows) {
        const int which = resource_of(std::string("TMK_") + row.name);
        const double full_mhz = row.freqs[0] / unit_of(row);
        std::vector<operating_point> &points = device.points[which];
        for (const double mhz : cap_levels_mhz(row))
            points.push_back(point_at(default_powers[which], mhz, full_mhz));
        for (int step = 3; step < steps; ++step)
            points.push_back(
                point_at(default_powers[which], std::round(full_mhz * step / steps), full_mhz));
        std::sort(points.begin(), points.end(),
                  [](const auto &a, const auto &b) { return a.mhz > b.mhz; });
    }
    return device;
}

std::string device_model_levels(const device_model &device, simulated_figures *figures) {
    for (tmk_freq_row &row : figures->rows) {
        const std::vector<double> &caps =
            device.cap_mhz[resource_of(std::string("TMK_") + row.name)];
        if (caps.empty())
            continue;
        std::fill_n(row.freqs, freq_level_slots, 0u);
        for (size_t level = 0; level < caps.size(); ++level)
            row.freqs[level] = static_cast<uint32_t>(std::lround(caps[level] * unit_of(row)));
    }
    return settings_check(*figures);
}

std::string device_model_check(const device_model &device, const simulated_figures &figures) {
    for (const tmk_freq_row &row : figures.rows) {
        const std::vector<operating_point> &points =
            device.points[resource_of(std::string("TMK_") + row.name)];
        const std::vector<double> levels = cap_levels_mhz(row);
        for (size_t level = 0; level < levels.size(); ++level) {
            const double mhz = levels[level];
            if (mhz < points.back().mhz - mhz_slack || mhz > points[0].mhz + mhz_slack)
                return std::string(row.name) + "." + std::to_string(level) + " is " +
                       short_number(mhz) + " MHz, and " + device.name + " goes from " +
                       short_number(points.back().mhz) + " to " + short_number(points[0].mhz);
        }
    }
    return {};
}

std::vector<double> cap_levels_mhz(const tmk_freq_row &row) {
    std::vector<double> levels;
    for (uint32_t level = 0; level < freq_level_slots && row.freqs[level] != 0; ++level)
        levels.push_back(row.freqs[level] / unit_of(row));
    return levels;
}

size_t point_within(const std::vector<operating_point> &points, double mhz) {
    const auto found = std::find_if(points.begin(), points.end(), [&](const auto &point) {
        return point.mhz <= mhz + mhz_slack;
    });
    return std::min(static_cast<size_t>(found - points.begin()), points.size() - 1);
}

std::optional<size_t> device_point(const device_model &device, int which, double mhz) {
    const size_t point = point_within(device.points[which], mhz);
    if (std::fabs(device.points[which][point].mhz - mhz) > mhz_slack)
        return std::nullopt;
    return point;
}
