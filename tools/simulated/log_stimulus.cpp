// What a log tells of the messages and panel reports that a daemon took: the events that a client
// alone raises, and the lines that name what came with them.
#include <stdlib.h>

#include <set>

#include "core/events.h"
#include "device/virtual_device.h"
#include "tools/recording/logcat.h"
#include "tools/recording/messages.h"
#include "tools/simulated/course.h"

namespace {

constexpr size_t line_max = size_t{1} << 16;
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
    const std::vector<timeline_entry> *entries;
    int64_t start_ns;
    size_t at;
    course *made;
    std::string package;  // in front, as the log said last
};

int64_t time_of(const reader &now, size_t at) {
    return (*now.entries)[at].time_ns - now.start_ns;
}

void add(reader *now, const dvx_message &message) {
    course_add_message(now->made, time_of(*now, now->at), message);
}

// Whether the entry at `at` may belong to the message that the log is read at.
bool is_of_message(const reader &now, size_t at) {
    return at < now.entries->size() && at < now.at + same_message_lines &&
           (*now.entries)[at].time_ns - (*now.entries)[now.at].time_ns <= same_message_ns;
}

// Looks for a line that begins so among those that belong to the message at `at`; what stands
// behind the beginning, or an empty text.
std::string find_behind(const reader &now, const std::string &beginning) {
    for (size_t at = now.at; is_of_message(now, at); ++at) {
        const timeline_entry &entry = (*now.entries)[at];
        if (entry.kind == timeline_log && entry.text.starts_with(beginning))
            return entry.text.substr(beginning.size());
    }
    return {};
}

bool follows_event(const reader &now, event_id event) {
    for (size_t at = now.at; is_of_message(now, at); ++at) {
        const timeline_entry &entry = (*now.entries)[at];
        if (entry.kind == timeline_event && strtoul(entry.text.c_str(), nullptr, 10) == event)
            return true;
    }
    return false;
}

// The rate that a tuned game wants stands in the line of the display's rate alone.
void add_game(reader *now, bool on) {
    const bool tuned = on && follows_event(*now, EV_GAME_TUNER_MODE_ON);
    const int32_t asked = atoi(find_behind(*now, "CF").c_str());
    const int32_t ofvalue = atoi(find_behind(*now, "ofvalue : ").c_str());
    add(now, make_message(DVX_CLIENT_POWERHAL, DVX_CODE_GAME,
                          {tuned ? 1 : 0, on ? 1 : 0, tuned && asked > 0 ? asked : 0, ofvalue}));
}

void add_activity(reader *now) {
    const std::string changed = find_behind(*now, "CA : ");
    if (!changed.empty())
        now->package = changed.substr(0, changed.find('\n'));
    add(now, make_text_message(DVX_CLIENT_POWERHAL, DVX_CODE_ACTIVITY, now->package + "/"));
}

void add_event(reader *now, uint32_t event) {
    for (const event_message &row : event_messages)
        if (row.event == event)
            add(now, make_message(row.client, row.code, {row.value}));
    const auto home = [&](const char *state) {
        add(now, make_text_message(DVX_CLIENT_POWERHAL, DVX_CODE_HOME, state));
    };
    switch (event) {
        case EV_GAME_APP_RESUMED:
        case EV_GAME_APP_PAUSED:
            add_game(now, event == EV_GAME_APP_RESUMED);
            break;
        case EV_ACTIVITY_CHANGED:
            add_activity(now);
            break;
        case EV_HOME_RESUMED:
            home(follows_event(*now, EV_LIVE_WALLPAPER_ON) ? "2:unknown" : "1:unknown");
            break;
        case EV_HOME_PAUSED:
            home("0:unknown");
            break;
        case EV_SCREEN_OFF:
        case EV_SCREEN_ON: {
            course_step step;
            step.time_ns = time_of(*now, now->at);
            step.kind = course_panel;
            step.value = event == EV_SCREEN_ON ? "panel_power_on = 1\n" : "panel_power_on = 0\n";
            now->made->steps.push_back(step);
            break;
        }
        default:
            break;
    }
}

void add_line(reader *now, const std::string &line) {
    const auto behind = [&](const std::string &beginning, std::string *rest) {
        *rest = line.starts_with(beginning) ? line.substr(beginning.size(), line.find('\n')) : "";
        while (rest->ends_with('\n'))
            rest->pop_back();
        return line.starts_with(beginning);
    };
    std::string rest;
    if (behind("CW : ", &rest))
        add(now, make_text_message(DVX_CLIENT_POWERHAL, DVX_CODE_WINDOW, rest));
    else if (behind("Game Optimizer : ", &rest))
        add(now, make_message(DVX_CLIENT_POWERHAL, DVX_CODE_GAME_OPTIMIZER, {atoi(rest.c_str())}));
    else if (behind("automode ", &rest))
        add(now, make_message(DVX_CLIENT_AUTOMODE, DVX_CODE_ANY, {atoi(rest.c_str())}));
    else if (behind("CA : ", &rest) && rest != now->package)
        add(now, make_text_message(DVX_CLIENT_POWERHAL, DVX_CODE_APP, now->package = rest));
}

}  // namespace

course course_of_log(const std::vector<timeline_entry> &entries, int64_t start_ns) {
    course made;
    made.setup = simulator_fresh_device(device_image_path());
    if (entries.empty())
        return made;
    reader now = {&entries, start_ns, 0, &made, ""};
    bool has_events = false;
    for (; now.at < entries.size(); ++now.at) {
        const timeline_entry &entry = entries[now.at];
        has_events |= entry.kind == timeline_event;
        if (entry.kind == timeline_event)
            add_event(&now, static_cast<uint32_t>(strtoul(entry.text.c_str(), nullptr, 10)));
        else if (entry.kind == timeline_log)
            add_line(&now, entry.text);
    }
    made.end_ns = time_of(now, entries.size() - 1);
    if (!has_events)
        made.remarks.push_back(
            "the log has no events, as debug lines were off: which messages came is not known");
    else
        made.remarks.push_back(
            "messages are told from the log: a game's wished rate without the tuner, requests for "
            "frame rates, low power and mitigation are not known");
    return made;
}

course course_of_log_text(std::string_view text) {
    std::vector<timeline_entry> entries;
    logcat_log log;
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find('\n', at), text.size());
        logcat_line line;
        const size_t length = end - at < line_max ? end - at : 0;  // no line of the daemon's
        if (logcat_take(&log, std::string(text.substr(at, length)), timeline_now_ns(), &line))
            entries.push_back(make_log_entry(line.time_ns, line.text));
        at = end + 1;
    }
    course made;
    if (entries.empty()) {
        made.error = "is no log with lines of the daemon";
        return made;
    }
    made = course_of_log(entries, entries.front().time_ns);
    made.remarks.insert(made.remarks.begin(), log.remarks.begin(), log.remarks.end());
    return made;
}
