#include "tools/explain/moments.h"

#include <utility>

#include "core/log.h"
#include "device/virtual_device.h"
#include "tools/base/daemon_process.h"
#include "tools/device/follow.h"
#include "tools/recording/logcat.h"
#include "tools/recording/recording.h"
#include "tools/simulated/settings.h"

namespace {

// Lines of one thread that lie closer together than this tell of one thing.
constexpr int64_t together_ns = 3000000;
// What follows a happening that was seen from outside comes within.
constexpr int64_t follows_ns = 50000000;

// The moment under way.
struct builder {
    const moment_taker *take;
    bool taken = false;  // the source says what belongs to which happening
    bool begun = false;
    bool open = false;
    int64_t first_ns = 0;
    int64_t last_ns = 0;
    moment now;
};

void finish(builder *built) {
    if (built->open)
        (*built->take)(built->now);
    built->open = false;
}

moment *begin(builder *built, moment_kind kind, int64_t time_ns, const std::string &thread) {
    finish(built);
    if (!built->begun)
        built->first_ns = time_ns;
    built->begun = built->open = true;
    built->last_ns = time_ns;
    built->now = {};
    built->now.kind = kind;
    built->now.time_ns = time_ns - built->first_ns;
    built->now.thread = thread;
    return &built->now;
}

// Whether a line is the first that an interval brings about.
bool begins_interval(const timeline_entry &entry) {
    const log_match line =
        entry.kind == timeline_log ? log_line_match(entry.text) : log_match{nullptr, {}};
    return line.row != nullptr &&
           (line.row->id == line_active_hits || line.row->id == line_active_jank ||
            line.row->id == line_active_slow);
}

// Puts what came to the moment that it belongs to, or begins one.
void add(builder *built, timeline_entry entry) {
    if (entry.text.empty())
        return;
    const std::string thread =
        entry.thread_name.empty() ? std::to_string(entry.thread) : entry.thread_name;
    const int64_t gap_ns = entry.time_ns - built->last_ns;
    const bool belongs =
        built->now.kind == moment_unknown
            ? thread == built->now.thread && gap_ns <= together_ns && !begins_interval(entry)
            : built->taken || gap_ns <= follows_ns;
    if (!built->open || !belongs)
        begin(built, moment_unknown, entry.time_ns, thread);
    if (built->now.kind == moment_unknown)
        built->last_ns = entry.time_ns;
    entry.time_ns -= built->first_ns;
    moment_add(&built->now, std::move(entry));
}

void add_recorded(builder *built, const recording_line &line) {
    if (line.kind == recording_output) {
        add(built, line.came);
        return;
    }
    const recorded_kind kind = line.kind == recording_interval ? recorded_interval : line.what.kind;
    moment *now = begin(built, moment_kind_of(kind), line.time_ns, "");
    now->interval_us = line.interval_us;
    now->message = line.what.message;
    now->is_text = line.is_text;
    now->on = line.what.report == "panel_power_on = 1\n";
}

moment_source describe_header(const recording_header &header, int64_t first_ns) {
    moment_source source;
    source.recorded = header.taken;
    source.device = header.device;
    source.daemon = header.daemon;
    source.wall_ns = header.wall_ns != 0 ? header.wall_ns + first_ns : 0;
    const std::string wrong = settings_of_header(header, &source.figures);
    source.error = wrong;
    return source;
}

moment_source read_recording(whole_file content, const source_taker &begin_source,
                             const moment_taker &take) {
    recording file = recording_of(std::move(content));
    recording_line line;
    moment_source source;
    source.error = file.error;
    if (!source.error.empty())
        return source;
    builder built = {&take, file.header.taken, false, false, 0, 0, {}};
    while (recording_next(&file, &line)) {
        if (!built.begun) {
            source = describe_header(file.header, line.time_ns);
            if (!source.error.empty())
                return source;
            begin_source(source);
        }
        add_recorded(&built, line);
    }
    finish(&built);
    if (!built.begun) {  // nothing has happened yet
        source = describe_header(file.header, 0);
        if (source.error.empty())
            begin_source(source);
    }
    if (source.error.empty())
        source.error = file.error;
    source.remarks = file.remarks;
    if (!file.header.taken)
        source.remarks.push_back(
            "seen from outside: what was taken, and in which order, is "
            "told as far as it shows");
    return source;
}

void add_log_line(builder *built, logcat_log *log, const std::string &line) {
    logcat_line read;
    if (!logcat_take(log, line, timeline_now_ns(), &read))
        return;
    timeline_entry entry = make_log_entry(read.time_ns, read.text);
    entry.thread = read.thread;
    entry.priority = read.priority;
    add(built, std::move(entry));
}

moment_source log_source() {
    moment_source source;
    source.remarks.push_back("from a log alone: calls and messages are told as far as it says");
    return source;
}

moment_source read_log(std::string_view text, const source_taker &begin_source,
                       const moment_taker &take) {
    constexpr size_t line_max = size_t{1} << 16;
    moment_source source = log_source();
    begin_source(source);
    builder built = {&take, false, false, false, 0, 0, {}};
    logcat_log log;
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find('\n', at), text.size());
        const size_t length = end - at < line_max ? end - at : 0;  // no line of the daemon's
        add_log_line(&built, &log, std::string(text.substr(at, length)));
        at = end + 1;
    }
    finish(&built);
    source.remarks.insert(source.remarks.end(), log.remarks.begin(), log.remarks.end());
    if (log.of_daemon == 0)
        source.error = "is neither a recording nor a log with lines of the daemon (tag " LOG_TAG
                       ", logcat's form threadtime)";
    return source;
}

}  // namespace

moment_source moments_of_file(const std::string &path, const source_taker &begin_source,
                              const moment_taker &take) {
    return moments_of_content(whole_file_open(path), begin_source, take);
}

moment_source moments_of_content(whole_file content, const source_taker &begin_source,
                                 const moment_taker &take) {
    if (!content.error.empty()) {
        moment_source source;
        source.error = content.error;
        return source;
    }
    if (content.text.starts_with(recording_beginning))
        return read_recording(std::move(content), begin_source, take);
    return read_log(content.text, begin_source, take);
}

moment_source moments_of_device(const std::string &root, bool follow,
                                const source_taker &begin_source, const moment_taker &take) {
    follow_limit limit;
    if (!follow)
        limit.end_ns = 0;
    const std::string notes = follow_notes_of(root, &limit.daemon);
    moment_source source = log_source();
    builder built = {&take, !notes.empty(), false, false, 0, 0, {}};
    recording_header header;
    logcat_log log;
    bool first = true;
    const std::string path = notes.empty() ? root + device_daemon_log : notes;
    if (notes.empty())
        begin_source(source);
    const std::string error = follow_file(
        path, limit,
        [&](const std::string &line) {
            recording_line read;
            if (notes.empty()) {
                add_log_line(&built, &log, line);
            } else if (std::exchange(first, false)) {
                source.error = recording_read_header(line, &header);
                source = source.error.empty() ? describe_header(header, 0) : source;
                if (source.error.empty())
                    begin_source(source);
            } else if (recording_read_line(line, &read)) {
                add_recorded(&built, read);
            }
            return source.error.empty();
        },
        [&] { finish(&built); });
    // What is known is known of now.
    if (!follow && built.begun && !notes.empty())
        begin(&built, moment_unknown, device_now_ns(), "");
    finish(&built);
    source.remarks.insert(source.remarks.end(), log.remarks.begin(), log.remarks.end());
    if (source.error.empty())
        source.error = error;
    return source;
}
