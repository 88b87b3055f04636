// Runs the benchmarks and writes one table: medians, and each beside its floor of the same run.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <filesystem>
#include <map>

#include "bench/process.h"
#include "bench/setup.h"

namespace {

struct row {
    const char *what;
    const char *name;
    const char *floor;  // null: none
    const char *target;
    double limit;        // of the ratio to the floor, or of the nanoseconds without one; 0: none
    bool above = false;  // of the nanoseconds above the floor
};

constexpr row rows[] = {
    {"message, round trip", "message_round_trip/real_time", "message_round_trip_floor/real_time",
     "1.15 x accept, limit, receive, close", 1.15},
    {"the same, beside a server without the limit", "message_round_trip/real_time",
     "message_round_trip_bare/real_time", "", 0},
    {"message, 4 under way", "message_burst/4/real_time", "message_burst_floor/4/real_time",
     "1.15 x accept, limit, receive, close", 1.15},
    {"message, 16 under way", "message_burst/16/real_time", "message_burst_floor/16/real_time",
     "1.15 x accept, limit, receive, close", 1.15},
    {"`notify_event`, 1 callback", "notify/1", "notify_floor/1", "3 ns over a plain loop", 3, true},
    {"`notify_event`, 8 callbacks", "notify/8", "notify_floor/8", "2 x plain loop", 2},
    {"`notify_event`, 64 callbacks", "notify/64", "notify_floor/64", "2 x plain loop", 2},
    {"`requestor_request_fps`, nothing new", "fps_request", nullptr, "none", 0},
    {"interval, suspended", "interval_suspended", nullptr, "40 ns", 40},
    {"interval, measuring, no scene", "interval_measuring/0", nullptr, "200 ns", 200},
    {"interval, measuring, two scenes", "interval_measuring/2", nullptr, "200 ns", 200},
    {"interval, measuring, five scenes", "interval_measuring/5", nullptr, "200 ns", 200},
    {"interval, active", "interval_active", nullptr, "80 ns", 80},
    {"kernel report to decision", "kernel_report", "kernel_report_floor",
     "1.15 x poll, read, rewind", 1.15},
};

// The medians of a run, by the benchmark's name.
class median_reporter : public benchmark::ConsoleReporter {
public:
    std::map<std::string, double> nanoseconds;
    double most_allocations = 0;

    void ReportRuns(const std::vector<Run> &runs) override {
        for (const Run &run : runs) {
            if (run.aggregate_name == "median")
                nanoseconds[run.run_name.str()] = run.GetAdjustedRealTime();
            const auto counted = run.counters.find("allocations");
            if (counted != run.counters.end() && counted->second.value > most_allocations)
                most_allocations = counted->second.value;
        }
    }
    bool ReportContext(const Context &) override { return true; }
};

const char *verdict(const row &line, double ns, double floor_ns) {
    if (line.limit <= 0)
        return "";
    const double held = line.above ? ns - floor_ns : line.floor != nullptr ? ns / floor_ns : ns;
    return held <= line.limit ? "met" : "missed";
}

void print_table(const median_reporter &medians) {
    printf("| what | median | floor | ratio | at most | |\n|---|---|---|---|---|---|\n");
    for (const row &line : rows) {
        const auto found = medians.nanoseconds.find(line.name);
        if (found == medians.nanoseconds.end()) {
            printf("| %s | not run here | | | %s | |\n", line.what, line.target);
            continue;
        }
        const double floor = line.floor != nullptr ? medians.nanoseconds.at(line.floor) : 0;
        if (line.floor != nullptr)
            printf("| %s | %.1f ns | %.1f ns | %.2f | %s | %s |\n", line.what, found->second, floor,
                   found->second / floor, line.target, verdict(line, found->second, floor));
        else
            printf("| %s | %.1f ns | | | %s | %s |\n", line.what, found->second, line.target,
                   verdict(line, found->second, floor));
    }
    printf("| allocations of the intervals | %.0f | | | 0 | %s |\n", medians.most_allocations,
           medians.most_allocations == 0 ? "met" : "missed");
}

void print_process(double start_ms, const process_figures &figures) {
    const auto verdict = [](bool met) { return met ? "met" : "missed"; };
    printf("| start, from fork to the start line | %.2f ms | | | 10 ms | %s |\n", start_ms,
           verdict(start_ms <= 10));
    printf("| resident when idle | %ld KiB | | | 4096 KiB | %s |\n", figures.idle_kib,
           verdict(figures.idle_kib <= 4096));
    printf("| resident after a hundredth of the load | %ld KiB | | | | |\n", figures.warm_kib);
    printf(
        "| resident after 10^5 messages and 10^6 intervals | %ld KiB | | | no growth | %+ld KiB "
        "|\n",
        figures.after_load_kib, figures.after_load_kib - figures.warm_kib);
    printf("| wake-ups a second when idle | %.1f | | | 2 | %s |\n", figures.idle_wakeups,
           verdict(figures.idle_wakeups <= 2.1));
    printf("| the same once a timer was armed | %.1f | | | 4 | %s |\n", figures.timer_wakeups,
           verdict(figures.timer_wakeups <= 4.2));
}

void remove_device() {
    std::error_code error;
    std::filesystem::remove_all(bench_device(), error);
}

}  // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    bench_device();
    atexit(remove_device);
    // Whole processes first, while the name of the daemon's socket is free.
    const double start_ms = measure_start_ms(21);
    const process_figures figures = measure_process();
    // What the daemon logs here is no part of any figure.
    const int null_fd = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(null_fd, STDERR_FILENO);
    median_reporter medians;
    benchmark::RunSpecifiedBenchmarks(&medians);
    print_table(medians);
    print_process(start_ms, figures);
    return 0;
}
