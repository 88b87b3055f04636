#include "tools/recording/logcat.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <algorithm>
#include <iterator>

#include "core/log.h"
#include "tools/base/clock.h"

namespace {

constexpr int64_t second_ns = 1000000000;
constexpr int64_t day_ns = int64_t{24} * 3600 * second_ns;
constexpr int64_t year_ns = 365 * day_ns;
constexpr time_t seconds_max = INT64_MAX / 2 / second_ns;  // differences stay in 64 bits
constexpr int digits_ns = 9;

// Lines of two threads may stand the other way round by less than this; more is the clock.
constexpr int64_t back_ns = second_ns;
// No log is silent for longer: a phone without a clock of its own begins in 1970.
constexpr int64_t ahead_ns = 30 * day_ns;

constexpr const char *daemon_tags[] = {LOG_TAG, "GBMv2", "Powercontrol_Client"};

// Reads "+HHMM "; how many seconds the zone is ahead, and where the line goes on.
const char *read_zone(const char *at, long *ahead_s) {
    int hours;
    int minutes;
    char sign;
    int length = 0;
    if (sscanf(at, " %c%2d%2d%n", &sign, &hours, &minutes, &length) != 3 ||
        (sign != '+' && sign != '-') || at[length] != ' ')
        return at;
    *ahead_s = (sign == '-' ? -1 : 1) * (hours * 3600L + minutes * 60L);
    return at + length;
}

// Reads "[YYYY-]MM-DD HH:MM:SS.FRACTION [ZONE]"; where the line goes on, or null.
const char *read_time(const char *at, int64_t now_ns, int64_t *time_ns, bool *has_year) {
    const time_t seconds_now = static_cast<time_t>(now_ns / second_ns);
    tm local;
    localtime_r(&seconds_now, &local);
    char fraction[digits_ns + 1];
    int length = 0;
    int year = 0;
    *has_year = sscanf(at, "%4d-%*2d-%*2d %n", &year, &length) == 1 && length > 0;
    if (*has_year) {
        local.tm_year = year - 1900;
        at += 5;
    }
    if (sscanf(at, "%2d-%2d %2d:%2d:%2d.%9[0-9]%n", &local.tm_mon, &local.tm_mday, &local.tm_hour,
               &local.tm_min, &local.tm_sec, fraction, &length) != 6)
        return nullptr;
    local.tm_mon -= 1;
    local.tm_isdst = -1;
    int64_t rest = atoll(fraction);
    for (size_t digits = strlen(fraction); digits < digits_ns; ++digits)
        rest *= 10;
    if (strlen(fraction) <= 3)
        rest += 999000;
    constexpr long no_zone = 100L * 3600;
    long ahead_s = no_zone;
    at = read_zone(at + length, &ahead_s);
    const time_t seconds = ahead_s != no_zone ? timegm(&local) - ahead_s : mktime(&local);
    if (seconds < -seconds_max || seconds > seconds_max)
        return nullptr;
    *time_ns = static_cast<int64_t>(seconds) * second_ns + rest;
    return at;
}

int priority_of(char letter) {
    constexpr char letters[] = "??VDIWEFS";
    const char *found = letter != '\0' ? strchr(letters + 2, letter) : nullptr;
    return found != nullptr ? static_cast<int>(found - letters) : 0;
}

// Brings a line's time to where time goes on. `number` is the line's in its file. Empty, or what
// the log's reader is to know of it.
std::string follow_clock(logcat_clock *clock, size_t number, logcat_line *line) {
    line->time_ns += clock->shift_ns;
    const int64_t step_ns = clock->begun ? line->time_ns - clock->last_ns : 0;
    int64_t shift_ns = step_ns < -back_ns || step_ns > ahead_ns ? -step_ns : 0;
    const bool new_year = !line->has_year && step_ns < -year_ns / 2;
    // Without a year in its lines the log of the first of January stands 365 or 366 days back.
    if (new_year)
        shift_ns = year_ns + step_ns >= -back_ns ? year_ns : year_ns + day_ns;
    clock->shift_ns += shift_ns;
    line->time_ns += shift_ns;
    if (clock->begun)
        line->time_ns = std::max(line->time_ns, clock->last_ns);
    clock->last_ns = line->time_ns;
    clock->begun = true;
    if (shift_ns == 0)
        return {};
    char said[128];
    if (new_year)
        snprintf(said, sizeof(said), "line %zu: a new year begins: %ld days are added", number,
                 static_cast<long>(shift_ns / day_ns));
    else
        snprintf(said, sizeof(said), "line %zu: the clock was set %s by %.3f s; time goes on here",
                 number, shift_ns > 0 ? "back" : "forward",
                 std::abs(static_cast<double>(shift_ns)) / 1e9);
    return said;
}

}  // namespace

bool logcat_read(const std::string &line, int64_t now_ns, logcat_line *read) {
    const char *at = read_time(line.c_str(), now_ns, &read->time_ns, &read->has_year);
    char priority;
    int length = 0;
    if (at == nullptr ||
        sscanf(at, " %d %d %c %n", &read->process, &read->thread, &priority, &length) != 3 ||
        length == 0)
        return false;
    read->priority = priority_of(priority);
    const char *text = strstr(at + length, ": ");
    if (text == nullptr) {  // an empty message may have lost its blank
        const size_t size = strlen(at);
        if (size == 0 || at[size - 1] != ':')
            return false;
        text = at + size - 1;
    }
    read->tag.assign(at + length, text);
    read->tag.erase(read->tag.find_last_not_of(' ') + 1);
    read->text = text[1] == ' ' ? text + 2 : "";
    if (read->text.ends_with('\r'))
        read->text.pop_back();
    return true;
}

record logcat_record(const logcat_line &line) {
    record made = make_log_record(line.time_ns, line.text);
    made.thread = line.thread;
    made.priority = line.priority;
    return made;
}

bool logcat_is_daemon(const logcat_line &line) {
    return std::any_of(std::begin(daemon_tags), std::end(daemon_tags),
                       [&](const char *tag) { return line.tag == tag; });
}

bool logcat_take(logcat_log *log, const std::string &line, int64_t now_ns, logcat_line *read) {
    ++log->lines;
    if (!logcat_read(line, now_ns, read) || !logcat_is_daemon(*read))
        return false;
    ++log->of_daemon;
    const std::string remark = follow_clock(&log->clock, log->lines, read);
    if (!remark.empty())
        log->remarks.push_back(remark);
    return true;
}

void logcat_read_text(logcat_log *log, std::string_view text,
                      const std::function<void(record line)> &take) {
    constexpr size_t line_max = size_t{1} << 16;
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find('\n', at), text.size());
        const size_t length = end - at < line_max ? end - at : 0;  // no line of the daemon's
        logcat_line line;
        if (logcat_take(log, std::string(text.substr(at, length)), wall_ns(), &line))
            take(logcat_record(line));
        at = end + 1;
    }
}
