#include "tools/device/timeline_printer.h"

#include <errno.h>
#include <stdio.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "device/virtual_device.h"
#include "tools/base/shown.h"
#include "tools/base/terminal.h"
#include "tools/recording/log_lines.h"

namespace {

// Calls that ask and do not set.
constexpr const char *asking_calls[] = {"init_", "get_num_of_thermal_config_desc",
                                        "verify_thermal_config_desc"};

// The thread that serves messages, whose name is left out, the one that takes panel reports, and
// the one that works for both.
constexpr char listener[] = "client_listener";
constexpr char monitor[] = "kevent_monitor";
constexpr char policy[] = "policy";

constexpr const char *colours[] = {"\033[1;36m", "\033[33m",   "\033[2m",    "\033[1;32m",
                                   "\033[1;35m", "\033[1;34m", "\033[1;31m", "\033[1m"};
static_assert(std::size(colours) == static_cast<size_t>(record_kind::note) + 1, "a colour a kind");

template <size_t count>
bool starts_with_any(const std::string &text, const char *const (&starts)[count]) {
    return std::any_of(std::begin(starts), std::end(starts),
                       [&](const char *start) { return text.starts_with(start); });
}

// The name of the daemon's thread, as `top -H` shows it, while the daemon runs.
std::string name_thread(timeline_printer *printer, int thread) {
    std::string &name = printer->threads[thread];
    if (name.empty()) {
        std::ifstream file("/proc/" + std::to_string(device_daemon_process(printer->line->root)) +
                           "/task/" + std::to_string(thread) + "/comm");
        if (!std::getline(file, name))
            name = "thread " + std::to_string(thread);
    }
    return name;
}

// Whether what a thread did came of the cause that was printed last. Timers and frame intervals are
// causes of their own. What is not dated on a thread stands as what was before it.
bool follows_from_cause(const timeline_printer &printer, const std::string &thread) {
    if (printer.cause.empty())
        return false;
    if (thread.empty())
        return printer.indented;
    const bool is_panel = printer.cause.starts_with("panel ");
    return thread == policy || thread == (is_panel ? monitor : listener);
}

void print_sentence(const record &came) {
    const std::string sentence =
        came.row != nullptr ? log_line_sentence(*came.row, came.values) : "";
    if (!sentence.empty())
        printf("                   = %s\n", shown(sentence).c_str());
}

void print_last(timeline_printer *printer) {
    const record &came = printer->last;
    const double seconds = static_cast<double>(came.time_ns - printer->line->start_ns) / 1e9;
    const std::string thread =
        came.thread != 0 ? name_thread(printer, came.thread) : came.thread_name;
    if (came.kind == record_kind::message)
        printer->cause = came.text;
    printer->indented = came.kind == record_kind::message ||
                        (came.kind != record_kind::note && follows_from_cause(*printer, thread));
    printf("+%.3f  %s%s%-7s%s  %s", std::max(seconds, 0.0),
           printer->indented && came.kind != record_kind::message ? "  " : "",
           printer->colour ? colours[static_cast<size_t>(came.kind)] : "", record_word(came.kind),
           printer->colour ? "\033[0m" : "", shown(came.text).c_str());
    if (!thread.empty() && thread != listener)
        printf("  [%s]", shown(thread).c_str());
    if (printer->repeated > 1)
        printf("  (%d times)", printer->repeated);
    printf("\n");
    if (printer->why)
        print_sentence(came);
    printer->repeated = 0;
}

}  // namespace

timeline_printer make_timeline_printer(const timeline *line, bool brief, bool why) {
    timeline_printer printer;
    printer.line = line;
    printer.colour = wants_colour();
    printer.brief = brief;
    printer.why = why;
    return printer;
}

void timeline_print(timeline_printer *printer, const record &came) {
    if (printer->brief && !timeline_is_telling(came))
        return;
    const record &last = printer->last;
    const bool repeats = printer->repeated > 0 && came.kind >= record_kind::call &&
                         came.kind == last.kind && came.thread == last.thread &&
                         came.thread_name == last.thread_name && came.text == last.text;
    if (!repeats && printer->repeated > 0)
        print_last(printer);
    if (!repeats)
        printer->last = came;
    ++printer->repeated;
}

int timeline_flush(timeline_printer *printer) {
    if (printer->repeated > 0)
        print_last(printer);
    return fflush(stdout) == 0 && ferror(stdout) == 0 ? 0 : errno;
}

bool timeline_is_telling(const record &came) {
    if (came.kind == record_kind::call)
        return !starts_with_any(came.text, asking_calls);
    if (came.kind != record_kind::log)
        return true;
    return came.row == nullptr || came.row->sentence != nullptr;
}
