#include "tools/lab/device_sources.h"

#include <ctype.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <functional>
#include <map>
#include <string>

#include "tools/base/words.h"

namespace {

constexpr double battery_v = 3.85;
constexpr double khz_mhz = 1e-3;
constexpr double hz_mhz = 1e-6;
// Kernels from 5.20 on give microwatts where older ones gave milliwatts; no rail takes more of
// those than this.
constexpr double milliwatts_max = 20000;

using point_list = std::vector<operating_point>;

struct power_domain {
    bool is_gpu = false;
    point_list points;
};

double full_mw(const point_list &points) {
    double full = 0;
    for (const operating_point &point : points)
        full = std::max(full, point.busy_mw);
    return full;
}

bool names_gpu(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(), tolower);
    return name.find("gpu") != std::string::npos || name.find("mali") != std::string::npos ||
           name.find("kgsl") != std::string::npos;
}

void text_lines(std::string_view text, const std::function<void(const std::string &)> &take) {
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find('\n', at), text.size());
        take(std::string(text.substr(at, end - at)));
        at = end + 1;
    }
}

// Finds out which part is which.
void assign(const std::vector<power_domain> &domains, device_model *device) {
    std::vector<const power_domain *> clusters;
    for (const power_domain &domain : domains) {
        if (domain.is_gpu)
            device->points[resource_gpu] = domain.points;
        else if (!domain.points.empty())
            clusters.push_back(&domain);
    }
    std::sort(clusters.begin(), clusters.end(),
              [](const auto *a, const auto *b) { return full_mw(a->points) > full_mw(b->points); });
    if (clusters.empty()) {
        device->error = "has no operating points of a CPU";
        return;
    }
    device->points[resource_big] = clusters.front()->points;
    device->points[resource_little] = clusters.back()->points;
    if (device->points[resource_gpu].empty())
        device->points[resource_gpu] = device_model_default().points[resource_gpu];
}

// ---- the energy model

bool read_energy_model(std::string_view text, device_model *device) {
    std::map<std::string, std::map<unsigned long, operating_point>> domains;
    text_lines(text, [&](const std::string &line) {
        char domain[64], what[16];
        unsigned long state;
        double value;
        const size_t states = line.find("/ps:");
        if (states == std::string::npos || states == 0)
            return;
        const size_t begin = line.rfind('/', states - 1) + 1;
        if (sscanf(line.c_str() + begin, "%63[^/]/ps:%lu/%15[^:]:%lf", domain, &state, what,
                   &value) != 4)
            return;
        operating_point &point = domains[domain][state];
        if (strcmp(what, "power") == 0)
            point.busy_mw = value;
        else if (strcmp(what, "frequency") == 0)
            point.mhz = value * khz_mhz;
    });
    if (domains.empty())
        return false;
    std::vector<power_domain> parts;
    for (const auto &[name, points] : domains) {
        power_domain part = {names_gpu(name), {}};
        for (const auto &[state, point] : points)
            part.points.push_back(point);
        const bool microwatts = full_mw(part.points) > milliwatts_max;
        for (operating_point &point : part.points) {
            point.busy_mw *= microwatts ? 1e-3 : 1;
            if (point.mhz == 0 || point.busy_mw == 0)
                device->error =
                    name + " has a state without " + (point.mhz == 0 ? "frequency" : "power");
        }
        parts.push_back(part);
    }
    if (device->error.empty())
        assign(parts, device);
    return true;
}

// ---- a device tree

// A node of a device tree's source.
struct tree_node {
    std::string label;
    std::string name;  // without its address
    std::map<std::string, std::string> properties;
};

// What stands inside the last angle brackets' first cell: a number, or a label behind '&'.
std::string first_cell(const std::string &value) {
    const size_t begin = value.rfind('<');
    if (begin == std::string::npos)
        return {};
    const size_t end = value.find_first_of(" >,", value.find_first_not_of(' ', begin + 1));
    return trimmed_text(value.substr(begin + 1, end - begin - 1));
}

double number_of(const tree_node &node, const std::string &property) {
    const auto found = node.properties.find(property);
    return found != node.properties.end() ? strtod(first_cell(found->second).c_str(), nullptr) : 0;
}

std::string without_comments(std::string_view text) {
    std::string plain;
    for (size_t at = 0; at < text.size();) {
        const bool block = text.substr(at, 2) == "/*";
        if (!block && text.substr(at, 2) != "//") {
            plain += text[at++];
            continue;
        }
        const size_t end = text.find(block ? "*/" : "\n", at + 2);
        at = end == std::string_view::npos ? text.size() : end + (block ? 2 : 0);
    }
    return plain;
}

// Every node, a node before those inside it; `parents` has the index of the one around each, -1 for
// none.
std::vector<tree_node> read_nodes(const std::string &text, std::vector<int> *parents) {
    std::vector<tree_node> nodes;
    std::vector<int> open = {-1};
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find_first_of("{};", at), text.size());
        const std::string statement = trimmed_text(text.substr(at, end - at));
        at = end + 1;
        const char mark = end < text.size() ? text[end] : ';';
        const size_t is = statement.find('=');
        if (mark == '{') {
            const size_t colon = statement.find(':');
            const std::string name =
                trimmed_text(colon != std::string::npos ? statement.substr(colon + 1) : statement);
            parents->push_back(open.back());
            open.push_back(static_cast<int>(nodes.size()));
            nodes.push_back(
                {colon != std::string::npos ? trimmed_text(statement.substr(0, colon)) : "",
                 name.substr(0, name.find('@')),
                 {}});
        } else if (mark == ';' && open.back() >= 0 && is != std::string::npos) {
            nodes[static_cast<size_t>(open.back())]
                .properties[trimmed_text(statement.substr(0, is))] = statement.substr(is + 1);
        } else if (mark == '}' && open.size() > 1) {
            open.pop_back();
        }
    }
    return nodes;
}

bool read_device_tree(std::string_view text, device_model *device) {
    if (text.find("opp-hz") == std::string_view::npos)
        return false;
    std::vector<int> parents;
    const std::vector<tree_node> nodes = read_nodes(without_comments(text), &parents);
    std::map<std::string, power_domain> tables;  // by label
    for (size_t i = 0; i < nodes.size(); ++i) {
        const tree_node &node = nodes[i];
        if (node.properties.contains("opp-hz") && parents[i] >= 0) {
            const tree_node &table = nodes[static_cast<size_t>(parents[i])];
            const double volt = number_of(node, "opp-microvolt") / 1e6;
            const double mhz = number_of(node, "opp-hz") * hz_mhz;
            tables[table.label].points.push_back({mhz, mhz * volt * volt / 1000, 0});
        }
    }
    std::vector<power_domain> parts;
    for (auto &table : tables) {
        const std::string &label = table.first;
        power_domain &part = table.second;
        const auto user = std::find_if(nodes.begin(), nodes.end(), [&](const tree_node &node) {
            const auto uses = node.properties.find("operating-points-v2");
            return uses != node.properties.end() && first_cell(uses->second) == "&" + label &&
                   number_of(node, "dynamic-power-coefficient") > 0;
        });
        if (user == nodes.end()) {
            device->error = "no node that uses '" + label + "' has a dynamic-power-coefficient";
            return true;
        }
        part.is_gpu = names_gpu(label) || names_gpu(user->name);
        for (operating_point &point : part.points)
            point.busy_mw *= number_of(*user, "dynamic-power-coefficient");
        parts.push_back(part);
    }
    assign(parts, device);
    return true;
}

// ---- a power profile

// Where the element of a name begins; npos: there is none.
size_t find_name(std::string_view text, const std::string &name) {
    return text.find("name=\"" + name + "\"");
}

std::vector<double> values_of(std::string_view text, const std::string &name) {
    const std::string_view mark = "<value>";
    std::vector<double> values;
    size_t at = find_name(text, name);
    const size_t end = at != std::string_view::npos ? text.find("</array>", at) : 0;
    for (at = text.find(mark, at); at < end; at = text.find(mark, at + 1))
        values.push_back(strtod(std::string(text.substr(at + mark.size(), 32)).c_str(), nullptr));
    return values;
}

double item_of(std::string_view text, const std::string &name) {
    const size_t at = text.find('>', find_name(text, name));
    return at != std::string_view::npos
               ? strtod(std::string(text.substr(at + 1, 32)).c_str(), nullptr)
               : 0;
}

bool read_power_profile(std::string_view text, device_model *device) {
    if (find_name(text, "cpu.core_speeds.cluster0") == std::string_view::npos)
        return false;
    std::vector<power_domain> parts;
    for (int cluster = 0;; ++cluster) {
        const std::string number = std::to_string(cluster);
        const std::vector<double> speeds = values_of(text, "cpu.core_speeds.cluster" + number);
        const std::vector<double> powers = values_of(text, "cpu.core_power.cluster" + number);
        if (speeds.empty())
            break;
        if (speeds.size() != powers.size()) {
            device->error = "cluster " + number + " has " + std::to_string(speeds.size()) +
                            " speeds and " + std::to_string(powers.size()) + " powers";
            return true;
        }
        power_domain part;
        for (size_t i = 0; i < speeds.size(); ++i)
            part.points.push_back({speeds[i] * khz_mhz, powers[i] * battery_v, 0});
        parts.push_back(part);
    }
    device->base_mw = item_of(text, "screen.on") * battery_v;
    assign(parts, device);
    return true;
}

}  // namespace

bool device_source_read(std::string_view text, device_model *device) {
    return read_power_profile(text, device) || read_device_tree(text, device) ||
           read_energy_model(text, device);
}
