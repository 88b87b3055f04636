#include "tools/commands/record_command.h"

#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <map>
#include <memory>

#include "device/virtual_device.h"
#include "tools/base/clock.h"
#include "tools/base/exit_status.h"
#include "tools/base/output_file.h"
#include "tools/base/shown.h"
#include "tools/base/words.h"
#include "tools/device/capture.h"
#include "tools/device/follow.h"
#include "tools/recording/recording.h"
#include "tools/simulated/settings.h"

namespace {

constexpr int64_t second_ns = 1000000000;

// The file under way, and what has gone into it.
struct output {
    output_file file;
    size_t lines = 0;
    size_t messages = 0;
    size_t intervals = 0;
    int64_t begin_ns = 0;
    int64_t told_ns = 0;
};

void tell_progress(output *out) {
    const int64_t present_ns = monotonic_ns();
    if (isatty(STDERR_FILENO) == 0 || present_ns - out->told_ns < second_ns / 2)
        return;
    out->told_ns = present_ns;
    fprintf(stderr, "\r%.0f s, %zu messages, %zu intervals; Ctrl-C ends the recording ",
            static_cast<double>(present_ns - out->begin_ns) / 1e9, out->messages, out->intervals);
}

// Takes a line. False where the file takes no more.
bool write_line(output *out, const std::string &line) {
    if (!output_write(&out->file, line + "\n"))
        return false;
    ++out->lines;
    out->messages += line.find("\"in\":\"message\"") != std::string::npos ? 1 : 0;
    out->intervals += line.find("\"in\":\"interval\"") != std::string::npos ? 1 : 0;
    tell_progress(out);
    return true;
}

// Completes a first line, which has what the daemon itself says of it.
std::string complete_header(recording_header header, const std::string &root) {
    const std::string model = root.empty() ? "" : device_property(root, "ro.product.model");
    header.device = !model.empty() ? model : root.empty() ? "phone" : "virtual device";
    header.since_ns = monotonic_ns();
    header.settings.clear();
    // The figures are those of this build: another version's are not known.
    if (header.daemon.empty() || header.daemon == DVX_VERSION)
        for (const auto &[name, value] : settings_of({}))
            header.settings[name] = std::to_string(value);
    return recording_header_line(header);
}

result record_notes(const record_options &options, const std::string &notes,
                    const follow_limit &limit, output *out) {
    bool first = true;
    std::string wrong;
    const std::string error = follow_file(notes, limit, [&](const std::string &line) {
        if (!std::exchange(first, false))
            return write_line(out, line);
        recording_header noted;
        wrong = recording_read_header(line, &noted);
        if (wrong.empty())
            return write_line(out, complete_header(noted, options.root));
        wrong = notes + " is no recording that this program reads";
        return false;
    });
    if (wrong.empty())
        wrong = error;
    return {wrong.empty() ? failure::none : failure::failed, wrong};
}

result record_captured(const record_options &options, const follow_limit &limit, output *out) {
    recording_header header;
    header.time_ns = monotonic_ns();
    header.wall_ns = wall_ns();
    header.root = options.root;
    if (!write_line(out, complete_header(header, options.root)))
        return {};
    result captured = capture({options.root, options.log}, limit,
                              [&](const std::string &line) { return write_line(out, line); });
    if (captured.kind == failure::none && out->file.error.empty())
        warn(
            "seen from outside: happenings of two threads within a millisecond may have come the "
            "other way round");
    return captured;
}

}  // namespace

int record_command(const record_options &options) {
    follow_limit limit;
    std::string notes;
    if (!options.root.empty() && options.log.empty()) {
        notes = follow_notes_of(options.root, &limit.daemon);
        if (limit.daemon == 0)
            return fail_without_daemon(options.root);
    }
    output out;
    out.file = output_open(options.out, {options.log, notes});
    if (!out.file.error.empty())
        return refuse(out.file.error);
    out.begin_ns = monotonic_ns();
    if (options.for_s > 0)
        limit.end_ns = out.begin_ns + static_cast<int64_t>(options.for_s * 1e9);
    follow_begin();
    const result recorded = !notes.empty() ? record_notes(options, notes, limit, &out)
                                           : record_captured(options, limit, &out);
    if (isatty(STDERR_FILENO) != 0)
        fprintf(stderr, "\n");
    if (recorded.kind != failure::none) {
        output_abandon(&out.file);
        return end_with(recorded);
    }
    const std::string unwritten = output_finish(&out.file);
    if (!unwritten.empty())
        return fail("cannot write " + unwritten);
    printf("%s: %s, %s, %s\n", shown(options.out).c_str(), counted(out.lines, "line").c_str(),
           counted(out.messages, "message").c_str(), counted(out.intervals, "interval").c_str());
    return 0;
}

void add_record_command(CLI::App *parent, command_context *context) {
    auto given = std::make_shared<record_options>();
    CLI::App *command =
        parent->add_subcommand("record", "Record what a daemon takes up and what comes of it")
            ->group("Recordings");
    command->add_option("--out", given->out, "The file to write")->required();
    command->add_option("--for", given->for_s, "How long, as 90s, 10m or 1h; else until Ctrl-C")
        ->transform(
            CLI::AsNumberWithUnit(std::map<std::string, double>{{"s", 1}, {"m", 60}, {"h", 3600}},
                                  CLI::AsNumberWithUnit::CASE_SENSITIVE))
        ->check([](const std::string &text) {
            return strtod(text.c_str(), nullptr) > 0 ? "" : "it is to be longer than nothing";
        });
    command->add_option("--log", given->log,
                        "A phone's log, from logcat -v threadtime; - for standard input");
    command->callback([=] {
        given->root = context->root;
        context->exit_code = record_command(*given);
    });
}
