#include "tools/commands/frames_command.h"

#include <stdio.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <memory>

#include "tools/base/exit_status.h"
#include "tools/base/json.h"
#include "tools/base/shown.h"
#include "tools/base/words.h"
#include "tools/commands/frame_reading.h"
#include "tools/frames/frame_figures.h"
#include "tools/frames/frame_file.h"

using nlohmann::ordered_json;

namespace {

struct arguments {
    std::vector<std::string> paths;
    frame_options options;
    bool json = false;
};

void print_text(const std::string &path, const frame_file &file) {
    const frame_figures of = frame_figures_of(file.intervals_us);
    printf("%s: %s\n", shown(path).c_str(), shown(frame_describe(file)).c_str());
    printf("  %s in %.2f s; %s left out%s%s\n", counted(of.intervals, "interval").c_str(),
           of.duration_s, counted(file.left_out, "row").c_str(), file.left_out == 0 ? "" : ": ",
           shown(file.left_out_why).c_str());
    for (const std::string &remark : file.remarks)
        printf("  %s\n", shown(remark).c_str());
    printf("  frames per second: mean %.2f, median %.2f, 1 %% low %.2f, 0.1 %% low %.2f\n",
           of.fps_mean, of.fps_median, of.fps_1_low, of.fps_0_1_low);
    printf("  median %.3f ms; above 1.5 x the median %zu frames, above 2 x %zu\n",
           of.median_us / 1000, of.above_1_5_median, of.above_2_median);
}

// Microseconds and rates to a thousandth: what is beyond says nothing.
double rounded(double value) {
    return std::round(value * 1000) / 1000;
}

void print_json(const std::string &path, const frame_file &file) {
    const frame_figures of = frame_figures_of(file.intervals_us);
    const ordered_json object = {{"file", path},
                                 {"format", file.format},
                                 {"column", file.column},
                                 {"unit", file.unit},
                                 {"app", file.app},
                                 {"intervals", of.intervals},
                                 {"left_out", file.left_out},
                                 {"left_out_why", file.left_out_why},
                                 {"sampled", file.sampled},
                                 {"median_us", rounded(of.median_us)},
                                 {"fps_mean", rounded(of.fps_mean)},
                                 {"fps_median", rounded(of.fps_median)},
                                 {"fps_1_low", rounded(of.fps_1_low)},
                                 {"fps_0_1_low", rounded(of.fps_0_1_low)},
                                 {"above_1_5_median", of.above_1_5_median},
                                 {"above_2_median", of.above_2_median},
                                 {"duration_s", std::round(of.duration_s * 1e6) / 1e6},
                                 {"remarks", file.remarks}};
    printf("%s\n", json_write(object).c_str());
}

int show(const arguments &given) {
    int exit_code = 0;
    for (const std::string &path : given.paths) {
        const frame_file file = frame_file_read(path, given.options);
        if (!file.error.empty()) {
            fflush(stdout);
            exit_code = frame_fail_reading(path, file);
        } else if (given.json) {
            print_json(path, file);
        } else {
            print_text(path, file);
        }
    }
    return exit_code;
}

}  // namespace

void add_frames_commands(CLI::App *app, command_context *context) {
    auto given = std::make_shared<arguments>();
    CLI::App *command =
        app->add_subcommand(
               "frames", "Show what frame files hold: their format, and figures of their intervals")
            ->group("Frame files");
    command
        ->add_option("FILE", given->paths,
                     "Recordings of frame times, as docs/frames.md lists them; - for standard "
                     "input")
        ->required();
    frame_add_options(command, &given->options);
    command->add_flag("--json", given->json, "Print one JSON object per file");
    command->callback([=] { context->exit_code = show(*given); });
}
