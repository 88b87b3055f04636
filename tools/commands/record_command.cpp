#include "tools/commands/record.h"

#include <stdio.h>
#include <unistd.h>

#include "device/virtual_device.h"
#include "tools/base/exit_status.h"
#include "tools/base/json.h"
#include "tools/base/output_file.h"
#include "tools/base/shown.h"
#include "tools/base/words.h"
#include "tools/device/follow.h"
#include "tools/recording/recording.h"
#include "tools/scenario/seen.h"
#include "tools/simulated/settings.h"

using nlohmann::ordered_json;

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
    std::string error;  // of what is recorded
};

void tell_progress(output *out) {
    const int64_t now_ns = device_now_ns();
    if (isatty(STDERR_FILENO) == 0 || now_ns - out->told_ns < second_ns / 2)
        return;
    out->told_ns = now_ns;
    fprintf(stderr, "\r%.0f s, %zu messages, %zu intervals; Ctrl-C ends the recording ",
            static_cast<double>(now_ns - out->begin_ns) / 1e9, out->messages, out->intervals);
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

// The first line, from what the daemon itself says of it.
ordered_json make_header(const ordered_json &noted, const std::string &root) {
    ordered_json header = {{"dvx_recording", recording_version}};
    header.update(noted);
    const std::string model = root.empty() ? "" : device_property(root, "ro.product.model");
    header["device"] = !model.empty() ? model : root.empty() ? "phone" : "virtual device";
    header["since"] = device_now_ns();
    // The figures are those of this build: another version's are not known.
    if (!header.contains("daemon") || header["daemon"] == DVX_VERSION) {
        ordered_json settings = ordered_json::object();
        for (const auto &[name, value] : settings_of({}))
            settings[name] = value;
        header["settings"] = settings;
    }
    return header;
}

int record_notes(const record_options &options, const std::string &notes, const follow_limit &limit,
                 output *out) {
    bool first = true;
    const std::string error = follow_file(notes, limit, [&](const std::string &line) {
        if (!std::exchange(first, false))
            return write_line(out, line);
        const ordered_json noted = json_read(line);
        if (!noted.is_object() || !noted.contains("dvx_recording") ||
            noted["dvx_recording"] != recording_version) {
            out->error = notes + " is no recording that this program reads";
            return false;
        }
        return write_line(out, json_write(make_header(noted, options.root)));
    });
    if (out->error.empty())
        out->error = error;
    return out->error.empty() ? 0 : exit_found;
}

int record_seen(const record_options &options, const follow_limit &limit, output *out) {
    ordered_json noted = {{"order", "seen"},
                          {"t", device_now_ns()},
                          {"wall_ns", timeline_now_ns()},
                          {"root", options.root}};
    if (!write_line(out, json_write(make_header(noted, options.root))))
        return exit_found;
    const seen_sources sources = {options.root, options.log};
    const std::string error =
        see(sources, limit, [&](const std::string &line) { return write_line(out, line); });
    if (!error.empty() && out->error.empty()) {
        out->error = error;
        return exit_input;
    }
    if (out->error.empty())
        warn(
            "seen from outside: happenings of two threads within a millisecond may have come the "
            "other way round");
    return out->error.empty() ? 0 : exit_found;
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
    out.begin_ns = device_now_ns();
    if (options.for_s > 0)
        limit.end_ns = out.begin_ns + static_cast<int64_t>(options.for_s * 1e9);
    follow_begin();
    const int status = !notes.empty() ? record_notes(options, notes, limit, &out)
                                      : record_seen(options, limit, &out);
    if (isatty(STDERR_FILENO) != 0)
        fprintf(stderr, "\n");
    if (!out.error.empty()) {
        output_abandon(&out.file);
        warn(out.error);
        return status;
    }
    const std::string unwritten = output_finish(&out.file);
    if (!unwritten.empty())
        return fail("cannot write " + unwritten);
    printf("%s: %s, %s, %s\n", shown(options.out).c_str(), counted(out.lines, "line").c_str(),
           counted(out.messages, "message").c_str(), counted(out.intervals, "interval").c_str());
    return 0;
}
