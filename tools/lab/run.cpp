#include "tools/lab/run.h"

#include <stdio.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <utility>

#include "device/virtual_device.h"
#include "tools/base/output_file.h"
#include "tools/recording/cap_call.h"
#include "tools/recording/messages.h"
#include "tools/recording/recording.h"
#include "tools/simulated/child_process.h"
#include "tools/simulated/settings.h"

namespace {

constexpr int64_t second_ns = 1000000000;
constexpr int64_t boot_ns = 1000 * second_ns;
constexpr double timers_us = 3e6;  // all that a game's coming arms are over by then
constexpr double late_factor = 1.5;
constexpr size_t slowest_part = 100;

// The daemon beside the game.
struct loop {
    size_t caps[resource_count] = {};
    device_levels levels;
    output_file recording;  // closed: none is wanted
    // Of each cap: where it was, for how long, and which way it went last.
    double since_us[resource_count] = {};
    double cut_us[resource_count] = {};
    int last_way[resource_count] = {};
    int changes = 0;
    int reversals = 0;
    std::map<std::vector<size_t>, double> stood_us;
    std::map<std::vector<size_t>, double> first_us;
    double stood_since_us = 0;
    bool timers_ran = false;  // those that the game's coming armed
};

std::vector<size_t> standing(const loop &daemon) {
    return {daemon.caps, daemon.caps + resource_count};
}

void note_standing(loop *daemon, double time_us) {
    daemon->stood_us[standing(*daemon)] += time_us - daemon->stood_since_us;
    daemon->stood_since_us = time_us;
}

void move_cap(loop *daemon, int which, double mhz, double time_us) {
    const std::vector<double> &levels = daemon->levels.mhz[which];
    const auto found = std::find_if(levels.begin(), levels.end(), [&](double each) {
        return each > mhz - 0.5 && each < mhz + 0.5;
    });
    const size_t level = static_cast<size_t>(found - levels.begin());
    size_t *cap = &daemon->caps[which];
    if (found == levels.end() || level == *cap)
        return;
    note_standing(daemon, time_us);
    daemon->cut_us[which] += (1 - levels[*cap] / levels[0]) * (time_us - daemon->since_us[which]);
    daemon->since_us[which] = time_us;
    const int way = level > *cap ? 1 : -1;
    daemon->reversals += daemon->last_way[which] == -way ? 1 : 0;
    daemon->last_way[which] = way;
    ++daemon->changes;
    *cap = level;
    daemon->first_us.try_emplace(standing(*daemon), time_us);
}

bool is_recorded(const loop &daemon) {
    return daemon.recording.fd >= 0;
}

// Lets something happen and takes what the daemon asks for then; both are recorded where that is
// wanted.
void take_up_recorded(loop *daemon, const happening &given, double time_us) {
    if (is_recorded(*daemon))
        output_write(&daemon->recording, recording_line_of(given) + "\n");
    take_up(given);
    for (const record &came : simulator_take()) {
        cap_call cap;
        const int which = cap_call_read(came, &cap) ? resource_of(cap.name) : -1;
        if (which >= 0)
            move_cap(daemon, which, cap.hertz / 1e6, time_us);
        if (is_recorded(*daemon))
            output_write(&daemon->recording, recording_line_of(came, given.time_ns) + "\n");
    }
}

happening make_happening(happening_kind kind, int64_t clock_ns) {
    happening made;
    made.kind = kind;
    made.time_ns = clock_ns;
    return made;
}

// Start-up, and the game in front with the timers that follow from that.
void begin(loop *daemon, const lab_setup &setup, const std::string &game) {
    simulator_setup device = simulator_fresh_device(device_image_path());
    device.figures = setup.figures;
    // Debug lines tell why; without somebody who reads them they only take time.
    device.properties["debug.dvxd_log.enable"] = is_recorded(*daemon) ? "1" : "0";
    if (is_recorded(*daemon)) {
        recording_header header;
        header.daemon = DVX_VERSION;
        header.taken = true;
        header.time_ns = boot_ns;
        header.device = "lab";
        header.properties = device.properties;
        header.answers = device.answers;
        for (const auto &[name, value] : settings_of(setup.figures))
            header.settings[name] = std::to_string(value);
        output_write(&daemon->recording, recording_header_line(header) + "\n");
    }
    simulator_replay_from(device, boot_ns);
    for (const happening_kind kind :
         {happening_kind::load, happening_kind::start, happening_kind::analyser})
        take_up_recorded(daemon, make_happening(kind, boot_ns), 0);
    for (const dvx_message &message :
         {make_text_message(DVX_CLIENT_POWERHAL, DVX_CODE_ACTIVITY, game + "/.Game"),
          make_text_message(DVX_CLIENT_POWERHAL, DVX_CODE_WINDOW, game),
          make_message(DVX_CLIENT_POWERHAL, DVX_CODE_GAME, {0, 1, 60, 0})})
        take_up_recorded(daemon, make_message_happening(message, boot_ns), 0);
}

// The game leaves; whether a cap is left behind.
bool end(loop *daemon, double time_us) {
    const int64_t clock_ns = boot_ns + static_cast<int64_t>(time_us * 1000);
    const dvx_message leaves = make_message(DVX_CLIENT_POWERHAL, DVX_CODE_GAME, {0, 0, 60, 0});
    take_up_recorded(daemon, make_message_happening(leaves, clock_ns), time_us);
    take_up_recorded(daemon, make_happening(happening_kind::timers, clock_ns + 5 * second_ns),
                     time_us);
    return std::any_of(daemon->caps, daemon->caps + resource_count,
                       [](size_t cap) { return cap != 0; });
}

double settle_s(const loop &daemon) {
    const auto most =
        std::max_element(daemon.stood_us.begin(), daemon.stood_us.end(),
                         [](const auto &a, const auto &b) { return a.second < b.second; });
    const auto first = daemon.first_us.find(most->first);
    return first != daemon.first_us.end() ? first->second / 1e6 : 0;
}

void finish_caps(run_result *result, loop *daemon, double time_us) {
    note_standing(daemon, time_us);
    result->settle_s = settle_s(*daemon);
    result->changes = daemon->changes;
    result->reversals = daemon->reversals;
    for (int i = 0; i < resource_count; ++i) {
        const std::vector<double> &levels = daemon->levels.mhz[i];
        daemon->cut_us[i] +=
            (1 - levels[daemon->caps[i]] / levels[0]) * (time_us - daemon->since_us[i]);
        result->cut[i] = daemon->cut_us[i] / time_us;
    }
}

void finish_frames(run_result *result, std::vector<float> *intervals_us, double time_us,
                   double energy, double *median_us) {
    const size_t count = intervals_us->size();
    if (*median_us == 0) {
        std::nth_element(intervals_us->begin(),
                         intervals_us->begin() + static_cast<long>(count / 2), intervals_us->end());
        *median_us = (*intervals_us)[count / 2];
    }
    const double limit_us = late_factor * *median_us;
    result->missed =
        static_cast<double>(std::count_if(intervals_us->begin(), intervals_us->end(),
                                          [&](float each) { return each > limit_us; })) /
        static_cast<double>(count);
    const size_t slow = std::max<size_t>(count / slowest_part, 1);
    std::nth_element(intervals_us->begin(), intervals_us->end() - static_cast<long>(slow),
                     intervals_us->end());
    const double slow_us =
        std::accumulate(intervals_us->end() - static_cast<long>(slow), intervals_us->end(), 0.0);
    result->low_fps = 1e6 * static_cast<double>(slow) / slow_us;
    result->fps = 1e6 * static_cast<double>(count) / time_us;
    result->energy_mj = energy;
}

game_result play(const lab_setup &setup, const game_work &game) {
    game_result result;
    result.game = game.name;
    result.minutes = setup.minutes;
    const double length_us = setup.minutes * 60e6;
    double median_us = 0;
    std::vector<float> intervals_us;
    intervals_us.reserve(static_cast<size_t>(length_us / 1e6 * setup.panel_hz) + 16);
    const auto play_whole = [&](run_result *into, loop *with_daemon) {
        constexpr size_t no_caps[resource_count] = {};
        const device_levels levels = levels_of(setup.figures);
        play_state state = play_begin(setup.seed, setup.panel_hz);
        happening interval = make_happening(happening_kind::interval, 0);
        double time_us = 0;
        intervals_us.clear();
        while (time_us < length_us) {
            const double interval_us =
                play_frame(&state, game, setup.varies, setup.picks, levels,
                           with_daemon != nullptr ? with_daemon->caps : no_caps);
            time_us += interval_us;
            intervals_us.push_back(static_cast<float>(interval_us));
            if (with_daemon == nullptr)
                continue;
            const int64_t clock_ns = boot_ns + static_cast<int64_t>(time_us * 1000);
            interval.time_ns = clock_ns;
            interval.interval_us = static_cast<int32_t>(std::lround(interval_us));
            take_up_recorded(with_daemon, interval, time_us);
            if (time_us > timers_us && !std::exchange(with_daemon->timers_ran, true))
                take_up_recorded(with_daemon, make_happening(happening_kind::timers, clock_ns),
                                 time_us);
        }
        finish_frames(into, &intervals_us, time_us, state.energy_mj, &median_us);
        return time_us;
    };
    play_whole(&result.free, nullptr);
    loop daemon;
    daemon.levels = levels_of(setup.figures);
    if (!setup.record.empty())
        daemon.recording = output_open(setup.record + "/" + game.name + ".rec");
    result.unwritten = daemon.recording.error;
    if (!result.unwritten.empty())
        return result;
    begin(&daemon, setup, game.name);
    const double time_us = play_whole(&result.capped, &daemon);
    finish_caps(&result.capped, &daemon, time_us);
    result.caps_left = end(&daemon, time_us);
    if (!setup.record.empty())
        result.unwritten = output_finish(&daemon.recording);
    return result;
}

// ---- between processes

// What a child answers; behind it, why its recording could not be written.
struct packed_result {
    run_result free;
    run_result capped;
    bool caps_left;
};

std::string pack(const game_result &result) {
    return child_pack(packed_result{result.free, result.capped, result.caps_left}) +
           result.unwritten;
}

game_result unpack(const lab_setup &setup, const game_work &game, const child_result &child) {
    packed_result packed;
    game_result result;
    result.game = game.name;
    result.minutes = setup.minutes;
    result.error = child.error;
    if (!result.error.empty())
        return result;
    if (!child_unpack(child.output, &packed)) {
        result.error = "said nothing";
        return result;
    }
    result.free = packed.free;
    result.capped = packed.capped;
    result.caps_left = packed.caps_left;
    result.unwritten = child.output.substr(sizeof(packed));
    return result;
}

}  // namespace

std::vector<game_result> lab_run(const lab_setup &setup) {
    std::vector<std::function<std::string()>> works;
    for (const game_work &game : setup.games)
        works.push_back([&setup, &game] { return pack(play(setup, game)); });
    const std::vector<child_result> children = run_in_children(works, setup.jobs);
    std::vector<game_result> results;
    for (size_t i = 0; i < children.size(); ++i)
        results.push_back(unpack(setup, setup.games[i], children[i]));
    return results;
}

double lab_fps_lost(const game_result &result) {
    return result.free.fps - result.capped.fps;
}

double lab_energy_saved(const game_result &result) {
    // With fewer frames less is spent: what counts is a frame's energy.
    const double free = result.free.energy_mj / result.free.fps;
    return free > 0 ? 1 - result.capped.energy_mj / result.capped.fps / free : 0;
}
