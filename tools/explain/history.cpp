#include "tools/explain/history.h"

#include <utility>

#include "core/log.h"
#include "device/virtual_device.h"
#include "tools/base/clock.h"
#include "tools/device/follow.h"
#include "tools/recording/logcat.h"
#include "tools/recording/recording.h"
#include "tools/simulated/settings.h"

namespace {

// Lines of one thread that lie closer together than this tell of one thing.
constexpr int64_t together_ns = 3000000;
// What follows a happening that was seen from outside comes within.
constexpr int64_t follows_ns = 50000000;

// The step under way.
struct builder {
    const step_taker *take;
    bool taken = false;  // the source says what belongs to which happening
    bool begun = false;
    bool open = false;
    int64_t first_ns = 0;
    int64_t last_ns = 0;
    step current = {};
};

void finish(builder *built) {
    if (built->open)
        (*built->take)(built->current);
    built->open = false;
}

void begin(builder *built, const happening &taken, int64_t time_ns, const std::string &thread) {
    finish(built);
    if (!built->begun)
        built->first_ns = time_ns;
    built->begun = built->open = true;
    built->last_ns = time_ns;
    built->current.taken = taken;
    built->current.time_ns = time_ns - built->first_ns;
    built->current.thread = thread;
    built->current.records.clear();
}

// Whether a line is the first that an interval brings about.
bool begins_interval(const record &line) {
    return record_is_line(line, log_line::active_hits) ||
           record_is_line(line, log_line::active_jank) ||
           record_is_line(line, log_line::active_slow);
}

// Puts what came to the step that it belongs to, or begins one.
void add(builder *built, record came) {
    if (came.text.empty())
        return;
    const std::string thread = record_thread(came);
    const int64_t gap_ns = came.time_ns - built->last_ns;
    const bool is_unknown = built->current.taken.kind == happening_kind::none;
    const bool belongs = is_unknown ? thread == built->current.thread && gap_ns <= together_ns &&
                                          !begins_interval(came)
                                    : built->taken || gap_ns <= follows_ns;
    if (!built->open || !belongs)
        begin(built, {}, came.time_ns, thread);
    if (built->current.taken.kind == happening_kind::none)
        built->last_ns = came.time_ns;
    came.time_ns -= built->first_ns;
    built->current.records.push_back(std::move(came));
}

void add_recorded(builder *built, recording_line *line) {
    if (line->is_happening)
        begin(built, line->taken, line->time_ns, "");
    else
        add(built, std::move(line->came));
}

history_source describe_header(const recording_header &header, int64_t first_ns) {
    history_source source;
    source.recorded = header.taken;
    source.device = header.device;
    source.daemon = header.daemon;
    const int64_t ahead_ns = recording_wall_ahead_ns(header);
    source.wall_ns = ahead_ns != 0 ? ahead_ns + first_ns : 0;
    const std::string wrong = settings_of_header(header, &source.figures);
    source.error = wrong;
    return source;
}

history_source read_recording(whole_file content, const source_taker &begin_source,
                              const step_taker &take) {
    recording file = recording_of(std::move(content));
    recording_line line;
    history_source source;
    source.error = file.error;
    if (!source.error.empty())
        return source;
    builder built = {&take, file.header.taken};
    while (recording_next(&file, &line)) {
        if (!built.begun) {
            source = describe_header(file.header, line.time_ns);
            if (!source.error.empty())
                return source;
            begin_source(source);
        }
        add_recorded(&built, &line);
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

history_source log_source() {
    history_source source;
    source.remarks.push_back("from a log alone: calls and messages are told as far as it says");
    return source;
}

history_source read_log(std::string_view text, const source_taker &begin_source,
                        const step_taker &take) {
    history_source source = log_source();
    begin_source(source);
    builder built = {&take};
    logcat_log log;
    logcat_read_text(&log, text, [&](record line) { add(&built, std::move(line)); });
    finish(&built);
    source.remarks.insert(source.remarks.end(), log.remarks.begin(), log.remarks.end());
    if (log.of_daemon == 0)
        source.error = "is neither a recording nor a log with lines of the daemon (tag " LOG_TAG
                       ", logcat's form threadtime)";
    return source;
}

}  // namespace

history_source history_of_file(const std::string &path, const source_taker &begin_source,
                               const step_taker &take) {
    return history_of_content(whole_file_open(path), begin_source, take);
}

history_source history_of_content(whole_file content, const source_taker &begin_source,
                                  const step_taker &take) {
    if (!content.error.empty()) {
        history_source source;
        source.error = content.error;
        return source;
    }
    if (content.text.starts_with(recording_beginning))
        return read_recording(std::move(content), begin_source, take);
    return read_log(content.text, begin_source, take);
}

history_source history_of_device(const std::string &root, bool follow,
                                 const source_taker &begin_source, const step_taker &take) {
    follow_limit limit;
    if (!follow)
        limit.end_ns = 0;
    const std::string notes = follow_notes_of(root, &limit.daemon);
    history_source source = log_source();
    builder built = {&take, !notes.empty()};
    recording notes_file;  // whose lines come one by one
    logcat_log log;
    bool first = true;
    const std::string path = notes.empty() ? root + device_daemon_log : notes;
    if (notes.empty())
        begin_source(source);
    const std::string error = follow_file(
        path, limit,
        [&](const std::string &line) {
            recording_line read;
            logcat_line said;
            if (notes.empty()) {
                if (logcat_take(&log, line, wall_ns(), &said))
                    add(&built, logcat_record(said));
            } else if (std::exchange(first, false)) {
                source.error = recording_read_header(line, &notes_file.header);
                source = source.error.empty() ? describe_header(notes_file.header, 0) : source;
                notes_file.answers = notes_file.header.answers;
                if (source.error.empty())
                    begin_source(source);
            } else if (recording_read_line(line, &read)) {
                recording_follow_answers(&notes_file, &read);
                add_recorded(&built, &read);
            }
            return source.error.empty();
        },
        [&] { finish(&built); });
    // What is known is known of now.
    if (!follow && built.begun && !notes.empty())
        begin(&built, {}, monotonic_ns(), "");
    finish(&built);
    source.remarks.insert(source.remarks.end(), log.remarks.begin(), log.remarks.end());
    if (source.error.empty())
        source.error = error;
    return source;
}
