#include "tools/commands/device_frames.h"

#include <errno.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <memory>

#include "device/virtual_device.h"

#include "tools/base/clock.h"
#include "tools/base/exit_status.h"
#include "tools/base/processes.h"
#include "tools/base/shown.h"
#include "tools/base/words.h"
#include "tools/commands/frame_reading.h"
#include "tools/device/delivery.h"
#include "tools/device/device_run.h"
#include "tools/device/frame_outcome.h"
#include "tools/device/frame_play.h"

namespace {

constexpr int exit_interrupted = 130;
constexpr int64_t look_ns = 500000000;  // between two looks at what followed
constexpr char as_fast_as_taken[] = "max";

struct arguments {
    std::string path;
    std::string rate = "real";
    frame_options options;
    bool sampled = false;
};

volatile sig_atomic_t interrupted = 0;

void note_interrupt(int) {
    interrupted = 1;
}

// The line on a terminal that is written over and over.
struct progress {
    bool shown;
    int64_t start_ns;
    int64_t next_ns;
    double all_us;
};

void show_progress(const progress &bar, const frame_run &run, size_t all) {
    const double part = bar.all_us > 0 ? run.played_us / bar.all_us : 1;
    const double took_s = static_cast<double>(monotonic_ns() - bar.start_ns) / 1e9;
    const long left_s = part > 0 ? std::lround(took_s * (1 - part) / part) : 0;
    fprintf(stderr, "\r%zu of %zu intervals, %ld:%02ld left\033[K", run.played, all, left_s / 60,
            left_s % 60);
}

int explain(const std::string &root, const frame_run &run, size_t all) {
    if (!device_exists(root))
        return fail_without_device(root);
    if (run.error == -ENXIO)
        return end_with({failure::no_daemon, "no daemon reads the nodes of " + root});
    if (run.error == -EBUSY)
        return fail("frames are being played on " + root + " already");
    const std::string far =
        " after " + std::to_string(run.played) + " of " + std::to_string(all) + " intervals";
    if (run.error == -EPIPE)
        return fail("the daemon on " + root + " has ended" + far);
    if (run.error != -ETIMEDOUT)
        return fail(root + ": " + strerror(-run.error) + far);
    const int pid = device_daemon_process(root);
    const std::string name = "dvxd " + std::to_string(pid);
    if (pid != 0 && process_is_stopped(pid))
        return fail(name + " is stopped and takes no intervals; kill -CONT " + std::to_string(pid) +
                    " lets it go on");
    return fail(name + " has taken no interval for " + std::to_string(frame_patience_ms / 1000) +
                " s," + far);
}

// Plays with an eye on Ctrl-C, the terminal and what the device writes.
frame_run play(const std::string &root, const std::vector<int64_t> &intervals_us, double speed,
               frame_outcome *outcome) {
    const int64_t start_ns = monotonic_ns();
    progress bar = {isatty(STDERR_FILENO) != 0, start_ns, start_ns + look_ns, 0};
    for (const int64_t interval_us : intervals_us)
        bar.all_us += static_cast<double>(interval_us);
    struct sigaction action = {};
    struct sigaction before;
    action.sa_handler = note_interrupt;
    sigaction(SIGINT, &action, &before);
    const frame_run run = frame_play(root, intervals_us, speed, [&](const frame_run &far) {
        if (monotonic_ns() >= bar.next_ns) {
            bar.next_ns = monotonic_ns() + look_ns;
            frame_outcome_take(outcome);
            if (bar.shown)
                show_progress(bar, far, intervals_us.size());
        }
        return interrupted == 0;
    });
    sigaction(SIGINT, &before, nullptr);
    if (bar.shown)
        fprintf(stderr, "\r\033[K");
    return run;
}

int play_file(const std::string &root, const arguments &given) {
    const frame_file file = frame_file_read(given.path, given.options);
    if (!file.error.empty())
        return frame_fail_reading(given.path, file);
    if (file.sampled && !given.sampled) {
        frame_file refused;
        refused.error = file.remarks.back() + "; --sampled plays them all the same";
        return frame_fail_reading(given.path, refused);
    }
    std::vector<int64_t> intervals_us;
    for (const double interval_us : file.intervals_us)
        intervals_us.push_back(std::llround(interval_us));
    const double speed = parse_speed(given.rate, as_fast_as_taken);
    frame_outcome outcome = frame_outcome_begin(root);
    const int64_t start_ns = monotonic_ns();
    const frame_run run = play(root, intervals_us, speed, &outcome);
    const double took_s = static_cast<double>(monotonic_ns() - start_ns) / 1e9;
    if (run.error != 0)
        return explain(root, run, intervals_us.size());
    if (run.interrupted)
        printf("stopped after %zu of %zu intervals: ", run.played, intervals_us.size());
    else
        printf("%s played: ", counted(run.played, "interval").c_str());
    printf("%.2f s of frames in %.2f s, from %s\n", run.played_us / 1e6, took_s,
           frame_describe(file).c_str());
    if (file.left_out > 0)
        printf("%s left out: %s\n", counted(file.left_out, "row").c_str(),
               shown(file.left_out_why).c_str());
    for (const std::string &remark : file.remarks)
        printf("%s\n", shown(remark).c_str());
    printf("%s", frame_outcome_end(&outcome).c_str());
    return run.interrupted ? exit_interrupted : 0;
}

}  // namespace

void add_device_frames_command(CLI::App *device, command_context *context) {
    auto given = std::make_shared<arguments>();
    CLI::App *command = device->add_subcommand(
        "frames",
        "Play a frame file into the node. A recording is open loop: caps that the daemon sets do "
        "not slow its frames down; the lab closes the loop");
    command
        ->add_option("FILE", given->path,
                     "A recording of frame times, as docs/frames.md lists them; - for standard "
                     "input")
        ->required();
    frame_add_options(command, &given->options);
    command->add_flag("--sampled", given->sampled,
                      "Play a log of samples, in which not every frame has a row");
    command->add_option("--rate", given->rate, "real, max, or N times real time")
        ->check([](const std::string &text) { return check_speed(text, as_fast_as_taken); })
        ->capture_default_str();
    command->callback([=] { context->exit_code = play_file(context->root, *given); });
}
