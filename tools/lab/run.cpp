#include "tools/lab/run.h"

#include <stdio.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <utility>

#include "device/virtual_device.h"
#include "tools/base/json.h"
#include "tools/base/output_file.h"
#include "tools/recording/cap_call.h"
#include "tools/recording/messages.h"
#include "tools/recording/recording_lines.h"
#include "tools/simulated/apart.h"
#include "tools/simulated/settings.h"
#include "tools/simulated/simulated.h"

using nlohmann::ordered_json;

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
    output_file record;  // closed: none is wanted
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

std::vector<size_t> standing(const loop &now) {
    return {now.caps, now.caps + resource_count};
}

void note_standing(loop *now, double time_us) {
    now->stood_us[standing(*now)] += time_us - now->stood_since_us;
    now->stood_since_us = time_us;
}

void move_cap(loop *now, int which, double mhz, double time_us) {
    const std::vector<double> &levels = now->levels.mhz[which];
    const auto found = std::find_if(levels.begin(), levels.end(), [&](double each) {
        return each > mhz - 0.5 && each < mhz + 0.5;
    });
    const size_t level = static_cast<size_t>(found - levels.begin());
    size_t *cap = &now->caps[which];
    if (found == levels.end() || level == *cap)
        return;
    note_standing(now, time_us);
    now->cut_us[which] += (1 - levels[*cap] / levels[0]) * (time_us - now->since_us[which]);
    now->since_us[which] = time_us;
    const int way = level > *cap ? 1 : -1;
    now->reversals += now->last_way[which] == -way ? 1 : 0;
    now->last_way[which] = way;
    ++now->changes;
    *cap = level;
    now->first_us.try_emplace(standing(*now), time_us);
}

// Takes what the daemon asked for; each line of it is recorded where that is wanted.
void take_calls(loop *now, double time_us, int64_t clock_ns) {
    for (const timeline_entry &entry : take_simulated()) {
        cap_call cap;
        if (entry.kind == timeline_hardware && cap_call_read(entry.text, &cap)) {
            const int which = resource_of(cap.name);
            if (which >= 0)
                move_cap(now, which, cap.hertz / 1e6, time_us);
        }
        if (now->record.fd >= 0)
            output_write(&now->record, recording_entry_line(entry, clock_ns) + "\n");
    }
}

void take_up(loop *now, recorded_kind kind, int64_t clock_ns, double time_us,
             const dvx_message *message = nullptr, bool is_text = false) {
    recorded_happening what;
    what.kind = kind;
    what.time_ns = clock_ns;
    if (message != nullptr)
        what.message = *message;
    if (now->record.fd >= 0)
        output_write(&now->record,
                     (message != nullptr ? recording_message_line(clock_ns, *message, is_text)
                                         : recording_plain_line(clock_ns, kind)) +
                         "\n");
    simulator_replay(what);
    take_calls(now, time_us, clock_ns);
}

// Start-up, and the game in front with the timers that follow from that.
void begin(loop *now, const lab_setup &setup, const std::string &game) {
    simulator_setup device = simulator_fresh_device(device_image_path());
    device.figures = setup.figures;
    // Debug lines tell why; without somebody who reads them they only take time.
    device.properties["debug.dvxd_log.enable"] = now->record.fd >= 0 ? "1" : "0";
    if (now->record.fd >= 0) {
        ordered_json header = {{"dvx_recording", recording_version},
                               {"daemon", DVX_VERSION},
                               {"order", "taken"},
                               {"t", boot_ns},
                               {"device", "lab"},
                               {"properties", device.properties},
                               {"answers", device.answers}};
        for (const auto &[name, value] : settings_of(setup.figures))
            header["settings"][name] = value;
        output_write(&now->record, json_write(header) + "\n");
    }
    simulator_replay_from(device, boot_ns);
    for (const recorded_kind kind : {recorded_load, recorded_start, recorded_analyser})
        take_up(now, kind, boot_ns, 0);
    const dvx_message messages[] = {
        make_text_message("powerhal", DVX_CODE_ACTIVITY, game + "/.Game"),
        make_text_message("powerhal", DVX_CODE_WINDOW, game),
        make_message("powerhal", DVX_CODE_GAME, {0, 1, 60, 0})};
    for (const dvx_message &message : messages)
        take_up(now, recorded_message, boot_ns, 0, &message, &message != &messages[2]);
}

// The game leaves; whether a cap is left behind.
bool end(loop *now, double time_us) {
    const int64_t clock_ns = boot_ns + static_cast<int64_t>(time_us * 1000);
    const dvx_message leaves = make_message("powerhal", DVX_CODE_GAME, {0, 0, 60, 0});
    take_up(now, recorded_message, clock_ns, time_us, &leaves);
    take_up(now, recorded_timers, clock_ns + 5 * second_ns, time_us);
    return std::any_of(now->caps, now->caps + resource_count, [](size_t cap) { return cap != 0; });
}

double settle_s(const loop &now) {
    const auto most =
        std::max_element(now.stood_us.begin(), now.stood_us.end(),
                         [](const auto &a, const auto &b) { return a.second < b.second; });
    const auto first = now.first_us.find(most->first);
    return first != now.first_us.end() ? first->second / 1e6 : 0;
}

void finish_caps(run_result *result, loop *now, double time_us) {
    note_standing(now, time_us);
    result->settle_s = settle_s(*now);
    result->changes = now->changes;
    result->reversals = now->reversals;
    for (int i = 0; i < resource_count; ++i) {
        const std::vector<double> &levels = now->levels.mhz[i];
        now->cut_us[i] += (1 - levels[now->caps[i]] / levels[0]) * (time_us - now->since_us[i]);
        result->cut[i] = now->cut_us[i] / time_us;
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
            const int32_t whole_us = static_cast<int32_t>(lround(interval_us));
            if (with_daemon->record.fd >= 0)
                output_write(&with_daemon->record,
                             recording_report_line(clock_ns, recorded_interval,
                                                   std::to_string(whole_us) + "\n") +
                                 "\n");
            simulator_replay_interval(clock_ns, whole_us);
            take_calls(with_daemon, time_us, clock_ns);
            if (time_us > timers_us && !std::exchange(with_daemon->timers_ran, true))
                take_up(with_daemon, recorded_timers, clock_ns, time_us);
        }
        finish_frames(into, &intervals_us, time_us, state.energy_mj, &median_us);
        return time_us;
    };
    play_whole(&result.free, nullptr);
    loop now;
    now.levels = levels_of(setup.figures);
    if (!setup.record.empty())
        now.record = output_open(setup.record + "/" + game.name + ".rec");
    result.unwritten = now.record.error;
    if (!result.unwritten.empty())
        return result;
    begin(&now, setup, game.name);
    const double time_us = play_whole(&result.capped, &now);
    finish_caps(&result.capped, &now, time_us);
    result.caps_left = end(&now, time_us);
    if (!setup.record.empty())
        result.unwritten = output_finish(&now.record);
    return result;
}

// ---- between processes

ordered_json pack(const run_result &run) {
    return {run.fps, run.low_fps, run.missed,    run.energy_mj,
            run.cut, run.changes, run.reversals, run.settle_s};
}

void unpack(const ordered_json &packed, run_result *run) {
    packed[0].get_to(run->fps);
    packed[1].get_to(run->low_fps);
    packed[2].get_to(run->missed);
    packed[3].get_to(run->energy_mj);
    for (int i = 0; i < resource_count; ++i)
        packed[4][static_cast<size_t>(i)].get_to(run->cut[i]);
    packed[5].get_to(run->changes);
    packed[6].get_to(run->reversals);
    packed[7].get_to(run->settle_s);
}

game_result unpack_game(const lab_setup &setup, const game_work &game, const apart_result &apart) {
    game_result result;
    result.game = game.name;
    result.minutes = setup.minutes;
    const ordered_json packed = json_read(apart.said);
    if (!apart.error.empty() || !packed.is_array()) {
        result.error = apart.error.empty() ? "said nothing" : apart.error;
        return result;
    }
    unpack(packed[0], &result.free);
    unpack(packed[1], &result.capped);
    packed[2].get_to(result.caps_left);
    packed[3].get_to(result.unwritten);
    return result;
}

}  // namespace

std::vector<game_result> lab_run(const lab_setup &setup) {
    std::vector<std::function<std::string()>> works;
    for (const game_work &game : setup.games)
        works.push_back([&setup, &game] {
            const game_result result = play(setup, game);
            return json_write(
                {pack(result.free), pack(result.capped), result.caps_left, result.unwritten});
        });
    const std::vector<apart_result> parts = run_all_apart(works, setup.jobs);
    std::vector<game_result> results;
    for (size_t i = 0; i < parts.size(); ++i)
        results.push_back(unpack_game(setup, setup.games[i], parts[i]));
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

ordered_json lab_describe(const game_result &result) {
    ordered_json cut;
    for (int i = 0; i < resource_count; ++i)
        cut[resource_names[i]] = result.capped.cut[i];
    return {{"game", result.game},
            {"fps_free", result.free.fps},
            {"fps_capped", result.capped.fps},
            {"low_free", result.free.low_fps},
            {"low_capped", result.capped.low_fps},
            {"missed_free", result.free.missed},
            {"missed_capped", result.capped.missed},
            {"energy_saved", lab_energy_saved(result)},
            {"cut", cut},
            {"cap_changes_per_minute", result.capped.changes / result.minutes},
            {"reversals_per_minute", result.capped.reversals / result.minutes},
            {"settle_s", result.capped.settle_s},
            {"caps_left", result.caps_left}};
}
