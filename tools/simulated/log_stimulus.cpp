#include "tools/simulated/log_stimulus.h"

#include <algorithm>

#include "core/events.h"
#include "device/virtual_device.h"
#include "tools/recording/logcat.h"
#include "tools/recording/messages.h"

namespace {

constexpr int64_t same_message_ns = 50000000;  // lines of one message lie within
constexpr size_t same_message_lines = 512;     // far more than any message brings about

// An event that one message alone raises.
struct event_message {
    event_id event;
    const char *client;
    int32_t code;
    int32_t value;
};

constexpr event_message event_messages[] = {
    {EV_GEO_APP_RESUMED, DVX_CLIENT_POWERHAL, DVX_CODE_GEO, 1},
    {EV_GEO_APP_PAUSED, DVX_CLIENT_POWERHAL, DVX_CODE_GEO, 0},
    {EV_BROWSER_APP_RESUMED, DVX_CLIENT_POWERHAL, DVX_CODE_BROWSER, 1},
    {EV_BROWSER_APP_PAUSED, DVX_CLIENT_POWERHAL, DVX_CODE_BROWSER, 0},
    {EV_SNS_APP_RESUMED, DVX_CLIENT_POWERHAL, DVX_CODE_SNS, 1},
    {EV_SNS_APP_PAUSED, DVX_CLIENT_POWERHAL, DVX_CODE_SNS, 0},
    {EV_INTERACTION, DVX_CLIENT_POWERHAL, DVX_CODE_INTERACTION, 0},
    {EV_ROTATION, DVX_CLIENT_POWERHAL, DVX_CODE_ROTATION, 0},
    {EV_SOFT_KEY, DVX_CLIENT_POWERHAL, DVX_CODE_SOFT_KEY, 0},
    {EV_FPS_LOCK, DVX_CLIENT_POWERHAL, DVX_CODE_FPS_LOCK, 1},
    {EV_FPS_UNLOCK, DVX_CLIENT_POWERHAL, DVX_CODE_FPS_LOCK, 0},
    {EV_ENCODE_START, DVX_CLIENT_POWERHAL, DVX_CODE_ENCODE, 1},
    {EV_ENCODE_END, DVX_CLIENT_POWERHAL, DVX_CODE_ENCODE, 0},
    {EV_INCOMING_CALL_ON, DVX_CLIENT_POWERHAL, DVX_CODE_INCOMING_CALL, 1},
    {EV_INCOMING_CALL_OFF, DVX_CLIENT_POWERHAL, DVX_CODE_INCOMING_CALL, 0},
    {EV_3RD_ENCODE_START, DVX_CLIENT_POWERHAL, DVX_CODE_3RD_ENCODE, 1},
    {EV_3RD_ENCODE_END, DVX_CLIENT_POWERHAL, DVX_CODE_3RD_ENCODE, 0},
    {EV_VIDEO_DECODE_ON, DVX_CLIENT_MEDIAHAL, DVX_CODE_VIDEO_DECODE, 1},
    {EV_VIDEO_DECODE_OFF, DVX_CLIENT_MEDIAHAL, DVX_CODE_VIDEO_DECODE, 0},
    {EV_VR_ON, DVX_CLIENT_VRHAL, DVX_CODE_VR, 1},
    {EV_VR_OFF, DVX_CLIENT_VRHAL, DVX_CODE_VR, 0},
    {EV_DGPC_39, DVX_CLIENT_DGPC, DVX_CODE_FPS, 0},
};

// Where the log stands while it is read.
struct reader {
    const std::vector<record> *records;
    int64_t start_ns;
    size_t at;
    stimulus *made;
    std::string package;  // in front, as the log said last
};

int64_t time_of(const reader &log) {
    return (*log.records)[log.at].time_ns - log.start_ns;
}

void add(reader *log, const dvx_message &message) {
    log->made->happenings.push_back(make_message_happening(message, time_of(*log)));
}

// Whether the record at `at` may belong to the message that the log is read at.
bool is_of_message(const reader &log, size_t at) {
    return at < log.records->size() && at < log.at + same_message_lines &&
           (*log.records)[at].time_ns - (*log.records)[log.at].time_ns <= same_message_ns;
}

// The line of that kind among those that belong to the message; null where there is none.
const record *find_line(const reader &log, log_line line) {
    for (size_t at = log.at; is_of_message(log, at); ++at)
        if (record_is_line((*log.records)[at], line))
            return &(*log.records)[at];
    return nullptr;
}

bool follows_event(const reader &log, event_id event) {
    for (size_t at = log.at; is_of_message(log, at); ++at) {
        const record &came = (*log.records)[at];
        if (came.kind == record_kind::event && came.event == event)
            return true;
    }
    return false;
}

// The rate that a tuned game wants stands in the line of the display's rate alone.
void add_game(reader *log, bool on) {
    const bool tuned = on && follows_event(*log, EV_GAME_TUNER_MODE_ON);
    const record *rate = find_line(*log, log_line::rate_applied);
    const record *ofvalue = find_line(*log, log_line::game_ofvalue);
    const int32_t asked = tuned && rate != nullptr ? record_integer(*rate, 0) : 0;
    add(log, make_message(DVX_CLIENT_POWERHAL, DVX_CODE_GAME,
                          {tuned ? 1 : 0, on ? 1 : 0, std::max(asked, 0),
                           ofvalue != nullptr ? record_integer(*ofvalue, 0) : 0}));
}

void add_activity(reader *log) {
    const record *changed = find_line(*log, log_line::app_in_front);
    if (changed != nullptr && !changed->values[0].empty())
        log->package = changed->values[0];
    add(log, make_text_message(DVX_CLIENT_POWERHAL, DVX_CODE_ACTIVITY, log->package + "/"));
}

void add_event(reader *log, uint32_t event) {
    for (const event_message &row : event_messages)
        if (row.event == event)
            add(log, make_message(row.client, row.code, {row.value}));
    const auto home = [&](const char *state) {
        add(log, make_text_message(DVX_CLIENT_POWERHAL, DVX_CODE_HOME, state));
    };
    switch (event) {
        case EV_GAME_APP_RESUMED:
        case EV_GAME_APP_PAUSED:
            add_game(log, event == EV_GAME_APP_RESUMED);
            break;
        case EV_ACTIVITY_CHANGED:
            add_activity(log);
            break;
        case EV_HOME_RESUMED:
            home(follows_event(*log, EV_LIVE_WALLPAPER_ON) ? "2:unknown" : "1:unknown");
            break;
        case EV_HOME_PAUSED:
            home("0:unknown");
            break;
        case EV_SCREEN_OFF:
        case EV_SCREEN_ON:
            log->made->happenings.push_back(
                make_panel_happening(event == EV_SCREEN_ON, time_of(*log)));
            break;
        default:
            break;
    }
}

void add_line(reader *log, const record &line) {
    switch (line.row != nullptr ? line.row->id : log_line::count) {
        case log_line::window_in_front:
            add(log, make_text_message(DVX_CLIENT_POWERHAL, DVX_CODE_WINDOW, line.values[0]));
            break;
        case log_line::game_optimizer:
            add(log, make_message(DVX_CLIENT_POWERHAL, DVX_CODE_GAME_OPTIMIZER,
                                  {record_integer(line, 0)}));
            break;
        case log_line::automode_command:
            add(log, make_message(DVX_CLIENT_AUTOMODE, DVX_CODE_ANY, {record_integer(line, 0)}));
            break;
        case log_line::app_in_front:
            if (line.values[0] != log->package)
                add(log, make_text_message(DVX_CLIENT_POWERHAL, DVX_CODE_APP,
                                           log->package = line.values[0]));
            break;
        default:
            break;
    }
}

}  // namespace

stimulus stimulus_of_log(const std::vector<record> &records, int64_t start_ns) {
    stimulus made;
    made.setup = simulator_fresh_device(device_image_path());
    if (records.empty())
        return made;
    reader log = {&records, start_ns, 0, &made, ""};
    bool has_events = false;
    for (; log.at < records.size(); ++log.at) {
        const record &came = records[log.at];
        has_events |= came.kind == record_kind::event;
        if (came.kind == record_kind::event)
            add_event(&log, came.event);
        else
            add_line(&log, came);
    }
    made.end_ns = records.back().time_ns - start_ns;
    if (!has_events)
        made.remarks.push_back(
            "the log has no events, as debug lines were off: which messages came is not known");
    else
        made.remarks.push_back(
            "messages are told from the log: a game's wished rate without the tuner, requests for "
            "frame rates, low power and mitigation are not known");
    return made;
}

stimulus stimulus_of_log_text(std::string_view text) {
    std::vector<record> records;
    logcat_log log;
    logcat_read_text(&log, text, [&](const record &line) { records.push_back(line); });
    stimulus made;
    if (records.empty()) {
        made.error = "is no log with lines of the daemon";
        return made;
    }
    made = stimulus_of_log(records, records.front().time_ns);
    made.remarks.insert(made.remarks.begin(), log.remarks.begin(), log.remarks.end());
    return made;
}
