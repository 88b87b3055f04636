#include "tools/lab/held_frames.h"

#include <string.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <utility>

#include "tools/base/whole_file.h"
#include "tools/base/words.h"
#include "tools/lab/csv_rows.h"
#include "tools/recording/cap_call.h"
#include "tools/recording/recording.h"

namespace {

constexpr double pause_us = 1e6;       // a longer interval is none of a frame
constexpr double period_near = 0.03;   // intervals this near to the panel's are its period
constexpr size_t period_frames = 300;  // at least, for it to be told

// A recording while it is read.
struct reader {
    held_frames *all = nullptr;
    const device_model *device = nullptr;
    size_t first = 0;  // of its frames
    std::array<size_t, resource_count> caps = {};
    std::vector<planned_cap>::const_iterator next;
    std::vector<planned_cap>::const_iterator last;
    double time_us = 0;  // since the game's first frame
    bool in_game = true;
    bool game_came = false;
    std::string game;
};

size_t index_of(std::vector<held_caps> *all, const held_caps &caps) {
    const auto found = std::find(all->begin(), all->end(), caps);
    if (found != all->end())
        return static_cast<size_t>(found - all->begin());
    all->push_back(caps);
    return all->size() - 1;
}

void take_message(reader *read, const dvx_message &message) {
    if (std::string_view(message.client) != DVX_CLIENT_POWERHAL)
        return;
    const std::string text(message.payload.text, strnlen(message.payload.text, DVX_PAYLOAD_SIZE));
    if (message.code == DVX_CODE_ACTIVITY && (read->game.empty() || !read->game_came))
        read->game = text.substr(0, text.find('/'));
    if (message.code != DVX_CODE_GAME)
        return;
    read->in_game = message.payload.values[1] != 0;
    if (read->in_game && !std::exchange(read->game_came, true))
        read->all->frames.resize(read->first);
}

// Empty, or why the device cannot be the recording's.
std::string take_cap(reader *read, const cap_call &cap) {
    const int which = resource_of(cap.name);
    if (which < 0)
        return {};
    const double mhz = cap.hertz / 1e6;
    const auto point = device_point(*read->device, which, mhz);
    if (!point)
        return cap.name + " is set to " + short_number(mhz) + " MHz, a clock that " +
               read->device->name + " does not have";
    read->caps[static_cast<size_t>(which)] = *point;
    return {};
}

void take_interval(reader *read, double interval_us) {
    if (!read->in_game || interval_us <= 0)
        return;
    for (; read->next != read->last && read->next->time_s * 1e6 <= read->time_us; ++read->next)
        read->caps[static_cast<size_t>(read->next->which)] = read->next->point;
    read->time_us += interval_us;
    if (interval_us < pause_us)
        read->all->frames.push_back(
            {index_of(&read->all->caps, {read->caps[resource_big], read->caps[resource_gpu]}),
             interval_us, read->time_us});
}

std::string take_line(reader *read, const recording_line &line) {
    cap_call cap;
    if (line.is_happening && line.taken.message != nullptr)
        take_message(read, *line.taken.message);
    else if (line.is_happening && line.taken.kind == happening_kind::interval)
        take_interval(read, line.taken.interval_us.value_or(0));
    else if (!line.is_happening && !record_is_refused(line.came) && cap_call_read(line.came, &cap))
        return take_cap(read, cap);
    return {};
}

}  // namespace

void held_frames_add(held_frames *all, const std::string &path, const device_model &device,
                     const hold_plan &plan) {
    recording file = recording_open(path);
    reader read;
    read.all = all;
    read.device = &device;
    read.first = all->frames.size();
    all->last_recording = read.first;
    read.next = plan.caps.begin();
    read.last = plan.caps.end();
    recording_line line;
    while (file.error.empty() && recording_next(&file, &line)) {
        const std::string wrong = take_line(&read, line);
        if (!wrong.empty())
            file.error = "line " + std::to_string(line.number) + ": " + wrong;
    }
    if (!file.error.empty()) {
        all->error = path + ": " + file.error;
        return;
    }
    if (all->frames.size() == read.first)
        all->error = path + ": no frames of a game in it";
    if (read.game.empty())
        read.game = std::filesystem::path(path).stem();
    if (!all->game.empty() && all->game != read.game)
        all->error = path + ": is of '" + read.game + "', and what was read before of '" +
                     all->game + "': one game is fitted at a time";
    all->game = read.game;
}

void held_frames_add_power(held_frames *all, const std::string &path) {
    const whole_file file = whole_file_open(path);
    std::string wrong = file.error;
    auto frame = all->frames.begin() + static_cast<long>(all->last_recording);
    double before_s = 0;
    // The frames of a sample, and whether the same caps stood in all of them.
    const auto take_sample = [&](double time_s, double mw) {
        const auto first = frame;
        frame = std::find_if(frame, all->frames.end(),
                             [&](const held_frame &each) { return each.end_us > time_s * 1e6; });
        const auto other = std::find_if(
            first, frame, [&](const held_frame &each) { return each.caps != first->caps; });
        if (first != frame && other == frame) {
            all->energy[first->caps].mj += mw * (time_s - before_s);
            all->energy[first->caps].seconds += time_s - before_s;
        }
        before_s = time_s;
    };
    const auto take_row = [&](size_t line, const std::vector<std::string> &row) {
        const auto time_s = csv_number(row[0]);
        const auto mw = csv_number(row.size() > 1 ? row[1] : "");
        const bool is_header = line == 1 && !time_s;
        if (!wrong.empty() || is_header)
            return;
        if (!time_s || !mw || *mw < 0 || *time_s < before_s)
            wrong = "line " + std::to_string(line) + ": is not seconds, later than before, and mW";
        else
            take_sample(*time_s, *mw);
    };
    all->energy.resize(all->caps.size());
    if (wrong.empty()) {
        const std::string no_table = csv_rows(file.text, take_row);
        wrong = wrong.empty() ? no_table : wrong;
    }
    if (wrong.empty() && before_s == 0)
        wrong = "has no samples";
    if (!wrong.empty())
        all->error = path + ": " + wrong;
}

void held_frames_finish(held_frames *all, double panel_hz) {
    const double expected_us = 1e6 / panel_hz;
    double sum_us = 0;
    size_t count = 0;
    for (const held_frame &frame : all->frames)
        if (std::fabs(frame.interval_us - expected_us) < period_near * expected_us) {
            sum_us += frame.interval_us;
            ++count;
        }
    if (count >= period_frames)
        all->period_us = sum_us / static_cast<double>(count);
}
