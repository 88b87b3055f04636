// What dvxctl reads: frame files, recordings, the daemon's log, scenarios, tables of games, files
// of searches; and what its commands say of them.
#include <stdio.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

#include <sstream>

#include "tools/commands/explain_commands.h"
#include "tools/explain/history.h"
#include "tools/explain/why.h"
#include "tools/frames/frame_figures.h"
#include "tools/frames/frame_file.h"
#include "tools/lab/device_file.h"
#include "tools/lab/games.h"
#include "tools/lab/lab_json.h"
#include "tools/recording/log_lines.h"
#include "tools/recording/timeline.h"
#include "tools/report/export.h"
#include "tools/report/report.h"
#include "tools/scenario/scenario.h"
#include "tools/simulated/log_stimulus.h"

namespace {

whole_file content_of(const std::string &text) {
    whole_file content;
    content.text = text;
    return content;
}

void read_as_steps(const std::string &text) {
    daemon_state state;
    const auto begin = [&](const history_source &source) {
        state = daemon_state_make(source.figures);
    };
    history_of_content(content_of(text), begin, [&](const step &taken) {
        for (const decision &made : why_take(&state, taken))
            decision_text(made);
    });
    recording file = recording_of(content_of(text));
    if (file.error.empty())
        stimulus_of_recording(&file);
    stimulus_of_log_text(text);
}

// The input as a file, by whose path commands open it.
std::string as_file(const std::string &text) {
    static const int fd = memfd_create("input", MFD_CLOEXEC);
    if (ftruncate(fd, 0) != 0 ||
        pwrite(fd, text.data(), text.size(), 0) != static_cast<ssize_t>(text.size()))
        abort();
    return "/proc/self/fd/" + std::to_string(fd);
}

// Commands, whose words nobody reads here.
void tell(const std::string &text) {
    static const bool silent = [] {
        stdout = fopen("/dev/null", "we");
        stderr = fopen("/dev/null", "we");
        return stdout != nullptr && stderr != nullptr;
    }();
    if (!silent)
        abort();
    const std::string path = as_file(text);
    for (const bool json : {false, true}) {
        why_command(path, "", json);
        status_command("", path, json);
        export_command(path, json ? "trace" : "csv", "/dev/null");
    }
    report_command({{path}, {}, "/dev/null"});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string text(reinterpret_cast<const char *>(data), size);
    for (const frame_options &options : {frame_options{}, frame_options{"ms", "ms", "", false},
                                         frame_options{"2", "", "game", true}}) {
        const frame_file file = frame_file_read_text(text, options);
        const frame_figures figures = frame_figures_of(file.intervals_us);
        if (file.error.empty() != (figures.duration_s > 0))  // intervals, or a reason
            abort();
    }
    std::istringstream log(text);
    for (std::string line; std::getline(log, line);)
        if (const record came = parse_daemon_line(line, 0); came.row != nullptr)
            log_line_sentence(*came.row, came.values);
    read_as_steps(text);
    games_read_text(text);
    device_model_read_text(text);
    tried_plays plays;
    tried_plays_read(text, &plays);
    std::istringstream scenarios(text);
    read_scenarios(scenarios);
    tell(text);
    return 0;
}
