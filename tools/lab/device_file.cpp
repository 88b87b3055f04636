#include "tools/lab/device_file.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "tools/base/files.h"
#include "tools/base/whole_file.h"
#include "tools/base/words.h"
#include "tools/lab/csv_rows.h"
#include "tools/lab/device_sources.h"

namespace {

struct figure {
    const char *name;
    double least;
    double most;
    void (*set)(device_model *device, double value);
};

constexpr figure figures[] = {
    {"base_mw", 0, 100000, [](device_model *device, double value) { device->base_mw = value; }},
    {"panel_hz", 24, 240, [](device_model *device, double value) { device->panel_hz = value; }},
    {"buffers", 2, 3,
     [](device_model *device, double value) { device->buffers = static_cast<int>(value); }},
    {"ambient_c", -40, 100,
     [](device_model *device, double value) { device->heat.ambient_c = value; }},
    {"k_per_w", 0, 1000, [](device_model *device, double value) { device->heat.k_per_w = value; }},
    {"heat_s", 0.1, 100000,
     [](device_model *device, double value) { device->heat.seconds = value; }},
    {"free_c", 0, 200, [](device_model *device, double value) { device->heat.free_c = value; }},
    {"held_c", 0, 200, [](device_model *device, double value) { device->heat.held_c = value; }},
    {"look_s", 0.01, 100, [](device_model *device, double value) { device->heat.look_s = value; }},
};

void add_point(device_model *device, int which, const std::vector<std::string> &row,
               std::string *wrong) {
    constexpr double most = 100000;
    double values[3] = {};
    for (size_t i = 0; i < 3; ++i) {
        const auto value = csv_number(i + 1 < row.size() ? row[i + 1] : "");
        if (!value || *value < 0 || *value > most || (i == 0 && *value == 0))
            *wrong =
                "a point is RESOURCE,MHZ,BUSY_MW,IDLE_MW, each from 0 to 100000, and perhaps "
                "',cap' behind";
        else
            values[i] = *value;
    }
    const bool is_cap = row.size() > 4 && row[4] == "cap";
    if (wrong->empty() && row.size() > 4 && !row[4].empty() && !is_cap)
        *wrong = "'" + row[4] + "' is not 'cap'";
    if (wrong->empty() && values[2] > values[1])
        *wrong = "draws more with nothing to do than at work";
    if (!wrong->empty())
        return;
    device->points[which].push_back({values[0], values[1], values[2]});
    if (is_cap)
        device->cap_mhz[which].push_back(values[0]);
}

void set_figure(device_model *device, const std::vector<std::string> &row, std::string *wrong) {
    std::vector<std::string> known(std::begin(resource_names), std::end(resource_names));
    for (const figure &each : figures) {
        known.emplace_back(each.name);
        if (row[0] != each.name)
            continue;
        const auto value = csv_number(row.size() > 1 ? row[1] : "");
        if (!value || *value < each.least || *value > each.most)
            *wrong = row[0] + " is from " + short_number(each.least) + " to " +
                     short_number(each.most) + ", not '" + (row.size() > 1 ? row[1] : "") + "'";
        else
            each.set(device, *value);
        return;
    }
    *wrong = "neither a resource nor a figure: '" + row[0] + "'";
    const std::string nearest = nearest_word(row[0], known);
    if (!nearest.empty())
        *wrong += ", did you mean '" + nearest + "'?";
}

void take_row(device_model *device, size_t line, const std::vector<std::string> &row) {
    if (!device->error.empty() || row[0] == "resource")
        return;
    std::string wrong;
    const int which = resource_of("TMK_" + row[0]);
    if (which >= 0)
        add_point(device, which, row, &wrong);
    else
        set_figure(device, row, &wrong);
    if (!wrong.empty())
        device->error = "line " + std::to_string(line) + ": " + wrong;
}

std::string check_points(const std::vector<operating_point> &points, const std::string &name) {
    if (points.empty())
        return "has no point of " + name;
    for (size_t i = 1; i < points.size(); ++i) {
        if (points[i].mhz == points[i - 1].mhz)
            return name + " has two points at " + short_number(points[i].mhz) + " MHz";
        if (points[i].busy_mw > points[i - 1].busy_mw)
            return name + " draws more at " + short_number(points[i].mhz) + " MHz than at " +
                   short_number(points[i - 1].mhz);
    }
    return {};
}

std::string check_device(const device_model &device) {
    for (int i = 0; i < resource_count; ++i) {
        std::string wrong = check_points(device.points[i], resource_names[i]);
        if (!wrong.empty())
            return wrong;
        if (device.cap_mhz[i].size() > freq_level_slots)
            return std::string(resource_names[i]) + " has more than " +
                   std::to_string(freq_level_slots) + " caps";
    }
    const heat_model &heat = device.heat;
    if (heat.k_per_w > 0 && !(heat.free_c > heat.ambient_c && heat.held_c >= heat.free_c))
        return "heat wants ambient_c below free_c, and held_c no lower than that";
    return {};
}

constexpr const char *folder = "../share/dvxd/devices";

}  // namespace

std::vector<std::string> device_model_names() {
    std::vector<std::string> names = {"default"};
    std::error_code error;
    for (const auto &each : std::filesystem::directory_iterator(sibling_program(folder), error))
        names.push_back(each.path().stem().string());
    std::sort(names.begin() + 1, names.end());
    return names;
}

device_model device_model_read(const std::string &name_or_path) {
    if (name_or_path == "default")
        return device_model_default();
    const std::vector<std::string> names = device_model_names();
    const bool ships = std::find(names.begin(), names.end(), name_or_path) != names.end();
    const whole_file content = whole_file_open(
        ships ? sibling_program(std::string(folder) + "/" + name_or_path + ".csv") : name_or_path);
    device_model device;
    if (content.error.empty())
        device = device_model_read_text(content.text);
    else
        device.error = content.error;
    if (!content.error.empty() && !nearest_word(name_or_path, names).empty())
        device.error += ", did you mean '" + nearest_word(name_or_path, names) + "'?";
    device.name = ships ? name_or_path : std::filesystem::path(name_or_path).stem().string();
    return device;
}

device_model device_model_read_text(std::string_view text) {
    device_model device;
    if (!device_source_read(text, &device)) {
        const std::string wrong =
            csv_rows(text, [&](size_t line, const auto &row) { take_row(&device, line, row); });
        if (device.error.empty())
            device.error = wrong;
    }
    for (int i = 0; i < resource_count; ++i) {
        std::sort(device.points[i].begin(), device.points[i].end(),
                  [](const auto &a, const auto &b) { return a.mhz > b.mhz; });
        std::sort(device.cap_mhz[i].begin(), device.cap_mhz[i].end(), std::greater<>());
    }
    if (device.error.empty())
        device.error = check_device(device);
    return device;
}
