#include "tools/lab/plan.h"

#include <stdio.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <sstream>
#include <utility>

#include "tools/base/whole_file.h"
#include "tools/base/words.h"
#include "tools/lab/csv_rows.h"
#include "tools/recording/cap_call.h"

namespace {

constexpr size_t levels_held[resource_count] = {4, 0, 3};
constexpr size_t turns = 4;   // that each pair has
constexpr size_t stride = 5;  // between pairs that follow each other, so that both caps move

// So many of a resource's points, from the highest clock to the lowest, each about the same share
// of the one before.
std::vector<size_t> points_held(const device_model &device, int which) {
    const std::vector<operating_point> &all = device.points[which];
    const double whole = all.back().mhz / all[0].mhz;
    const size_t wanted = std::min(levels_held[which], all.size());
    std::vector<size_t> held;
    for (size_t i = 0; i < wanted; ++i) {
        const double part = static_cast<double>(i) / std::max(static_cast<double>(wanted) - 1, 1.0);
        const double mhz = all[0].mhz * std::pow(whole, part);
        const auto nearest = std::min_element(all.begin(), all.end(), [&](auto &a, auto &b) {
            return std::fabs(a.mhz - mhz) < std::fabs(b.mhz - mhz);
        });
        const size_t point = static_cast<size_t>(nearest - all.begin());
        if (held.empty() || held.back() != point)
            held.push_back(point);
    }
    return held;
}

void add_cap(hold_plan *plan, double time_s, int which, size_t point) {
    const auto before = std::find_if(plan->caps.rbegin(), plan->caps.rend(),
                                     [&](const planned_cap &cap) { return cap.which == which; });
    if (before == plan->caps.rend() || before->point != point)
        plan->caps.push_back({time_s, which, point});
}

// Reads a line. Empty, or what is wrong with it.
std::string read_line(const std::string &line, const device_model &device, planned_cap *cap) {
    std::istringstream words(line);
    std::string time, call;
    words >> time;
    std::getline(words >> std::ws, call);
    cap_call read;
    const auto time_s = csv_number(time);
    if (!time_s || *time_s < 0 || !cap_call_read(make_call_record(0, call), &read))
        return "is not 'SECONDS set_tmk_freq NAME FREQUENCY'";
    cap->time_s = *time_s;
    cap->which = resource_of(read.name);
    if (cap->which < 0)
        return "no resource is named '" + read.name + "'";
    const double mhz = read.hertz / 1e6;
    const auto point = device_point(device, cap->which, mhz);
    if (!point)
        return device.name + " has no clock of " + short_number(mhz) + " MHz for " + read.name;
    cap->point = *point;
    return {};
}

}  // namespace

hold_plan plan_make(const device_model &device, double hold_s) {
    hold_plan plan;
    std::vector<std::array<size_t, 2>> pairs;
    const std::vector<size_t> gpus = points_held(device, resource_gpu);
    for (const size_t big : points_held(device, resource_big))
        for (const size_t gpu : gpus)
            pairs.push_back({big, gpu});
    if (pairs.size() < 2) {
        plan.error =
            device.name + " has no caps to hold: its CLUSTER1 and its GPU have one clock each";
        return plan;
    }
    const double turn_s = hold_s / static_cast<double>(turns);
    size_t step = stride;
    while (pairs.size() % step == 0)
        ++step;
    for (size_t i = 0; i < turns * pairs.size(); ++i) {
        // Another pair begins each turn, so that none has the same neighbours.
        const auto &[big, gpu] = pairs[(i * step + i / pairs.size()) % pairs.size()];
        add_cap(&plan, static_cast<double>(i) * turn_s, resource_big, big);
        add_cap(&plan, static_cast<double>(i) * turn_s, resource_gpu, gpu);
    }
    const double end_s = hold_s * static_cast<double>(pairs.size());
    plan.caps.push_back({end_s, resource_big, 0});
    plan.caps.push_back({end_s, resource_gpu, 0});
    return plan;
}

std::string plan_call(const planned_cap &cap, const device_model &device) {
    const std::string name = std::string("TMK_") + resource_names[cap.which];
    const double hertz = device.points[cap.which][cap.point].mhz * 1e6;
    return "set_tmk_freq " + name + " " + std::to_string(std::llround(hertz / cap_hertz(name, 1)));
}

std::string plan_text(const hold_plan &plan, const device_model &device) {
    std::string text;
    for (const planned_cap &cap : plan.caps) {
        char time[32];
        snprintf(time, sizeof(time), "%g ", cap.time_s);
        text.append(time).append(plan_call(cap, device)).append("\n");
    }
    return text;
}

hold_plan plan_read(const std::string &path, const device_model &device) {
    hold_plan plan;
    const whole_file file = whole_file_open(path);
    if (!file.error.empty()) {
        plan.error = file.error;
        return plan;
    }
    std::istringstream lines{std::string(file.text)};
    size_t number = 0;
    for (std::string line; plan.error.empty() && std::getline(lines, line);) {
        ++number;
        line = trimmed_text(line);
        if (line.empty() || line[0] == '#')
            continue;
        planned_cap cap;
        std::string wrong = read_line(line, device, &cap);
        if (wrong.empty() && !plan.caps.empty() && cap.time_s < plan.caps.back().time_s)
            wrong = "is of an earlier time than the line before";
        if (!wrong.empty())
            plan.error = "line " + std::to_string(number) + ": " + wrong;
        plan.caps.push_back(cap);
    }
    if (plan.error.empty() && plan.caps.empty())
        plan.error = "holds nothing";
    return plan;
}
