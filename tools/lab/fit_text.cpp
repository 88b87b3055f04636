#include "tools/lab/fit_text.h"

#include <stdio.h>

#include <algorithm>
#include <cmath>

#include "tools/base/shown.h"
#include "tools/base/words.h"

namespace {

constexpr double shape_told = 6;     // of chi-squared: some 20 to 1
constexpr double told_within = 0.5;  // a figure is told whose interval is no wider than that of it

const char *shape_of(const game_work &game) {
    return game.serial ? "serial" : "parallel";
}

bool is_told(const fitted_figure &figure) {
    return figure.high - figure.low < 2 * told_within * figure.value;
}

std::string caps_text(const held_caps &caps, const device_model &device) {
    return "CLUSTER1 " + short_number(device.points[resource_big][caps.big].mhz) + ", GPU " +
           short_number(device.points[resource_gpu][caps.gpu].mhz) + " MHz";
}

void print_figure(const std::string &name, const fitted_figure &figure) {
    printf("%-36s %7.2f %7.2f %7.2f%s\n", name.c_str(), figure.value, figure.low, figure.high,
           is_told(figure) ? "" : "  not told");
}

}  // namespace

const char *const fitted_names[fitted_count] = {"cpu_fixed_ms", "cpu_megacycles", "gpu_fixed_ms",
                                                "gpu_megacycles"};

void print_fit(const fitted_game &fitted, const held_frames &held, const device_model &device) {
    printf("%s: %zu frames under %zu pairs of caps\n", shown(held.game).c_str(), held.frames.size(),
           fitted.rates.size());
    printf("%-36s %7s %7s %7s\n", "", "value", "from", "to");
    for (size_t i = 0; i < fitted_count; ++i)
        print_figure(fitted_names[i], fitted.figures[i]);
    constexpr const char *clocks[2] = {", full clock, ms", ", lowest held, ms"};
    for (size_t i = 0; i < 2; ++i) {
        print_figure(std::string("CPU of a frame") + clocks[i], fitted.cpu_ms[i]);
        print_figure(std::string("GPU of a frame") + clocks[i], fitted.gpu_ms[i]);
        if (fitted.game.serial)
            print_figure(std::string("both") + clocks[i], fitted.both_ms[i]);
    }
    printf("shape %s; the other one fits worse by %.1f of chi-squared%s\n", shape_of(fitted.game),
           fitted.other_shape,
           fitted.other_shape < shape_told ? ", which does not tell them apart" : "");
    if (fitted.game.limit_fps > 0)
        printf("it limits itself to %s frames per second\n",
               short_number(fitted.game.limit_fps).c_str());
    const auto worst = std::max_element(
        fitted.rates.begin(), fitted.rates.end(), [](const auto &a, const auto &b) {
            return std::fabs(a.fitted_fps - a.fps) < std::fabs(b.fitted_fps - b.fps);
        });
    printf(
        "What was recorded is played again within %.2f frames per second, worst at %s: %.2f, "
        "recorded %.2f; panel %.2f Hz.\n",
        std::fabs(worst->fitted_fps - worst->fps), caps_text(worst->caps, device).c_str(),
        worst->fitted_fps, worst->fps, fitted.panel_hz);
    printf(
        "From and to: in 95 of 100 cases, where its work varies as the lab's games do. Not told: "
        "the frames say little of it, and it lies where the lab's own games do.\n");
}

std::string fit_table(const fitted_game &fitted) {
    std::string header = "name,shape";
    std::string row = fitted.game.name + "," + shape_of(fitted.game);
    for (size_t i = 0; i < fitted_count; ++i) {
        char value[32];
        snprintf(value, sizeof(value), ",%.4f", fitted.figures[i].value);
        header.append(",").append(fitted_names[i]);
        row.append(value);
    }
    header.append(",limit_fps,told");
    row.append(",").append(short_number(fitted.game.limit_fps));
    const bool told = fitted.game.serial ? is_told(fitted.both_ms[1])
                                         : is_told(fitted.cpu_ms[1]) || is_told(fitted.gpu_ms[1]);
    row.append(told ? ",yes" : ",no");
    return header + "\n" + row + "\n";
}
