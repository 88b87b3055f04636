#include "tools/lab/run.h"

#include <stdio.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <utility>

#include "device/virtual_device.h"
#include "fia/records.h"
#include "tools/base/output_file.h"
#include "tools/lab/run_recording.h"
#include "tools/recording/cap_call.h"
#include "tools/recording/messages.h"
#include "tools/recording/recording.h"
#include "tools/simulated/child_process.h"
#include "tools/simulated/settings.h"

namespace {

constexpr int64_t second_ns = 1000000000;
constexpr double timers_us = 3e6;  // all that a game's coming arms are over by then
constexpr double late_factor = 1.5;
constexpr size_t slowest_part = 100;
constexpr size_t learned_intervals = 300;  // between two looks at what the analyser has learned

// The daemon beside the game.
struct loop {
    size_t caps[resource_count] = {};  // points of the device
    const environment *on = nullptr;
    std::vector<double> levels[resource_count];  // of the daemon's caps, in MHz
    size_t level[resource_count] = {};
    output_file recording;  // closed: none is wanted
    // Of each cap: for how long it stood where it is, and which way it went last.
    double since_us[resource_count] = {};
    double cut_us[resource_count] = {};
    int last_way[resource_count] = {};
    int changes = 0;
    int reversals = 0;
    std::map<std::vector<size_t>, double> stood_us;
    std::map<std::vector<size_t>, double> first_us;
    double stood_since_us = 0;
    std::map<int, int> learned;  // how often the analyser was seen to hold which frame rate
    bool timers_ran = false;     // those that the game's coming armed
};

std::vector<size_t> standing(const loop &daemon) {
    return {daemon.level, daemon.level + resource_count};
}

void note_standing(loop *daemon, double time_us) {
    daemon->stood_us[standing(*daemon)] += time_us - daemon->stood_since_us;
    daemon->stood_since_us = time_us;
}

// What a cap takes off its resource's highest clock.
double cut_of(const loop &daemon, int which) {
    return 1 - daemon.levels[which][daemon.level[which]] / daemon.levels[which][0];
}

void note_cut(loop *daemon, int which, double time_us) {
    daemon->cut_us[which] += cut_of(*daemon, which) * (time_us - daemon->since_us[which]);
    daemon->since_us[which] = time_us;
}

void move_cap(loop *daemon, int which, double mhz, double time_us) {
    const std::vector<double> &levels = daemon->levels[which];
    const auto found = std::find_if(levels.begin(), levels.end(), [&](double each) {
        return each > mhz - 0.5 && each < mhz + 0.5;
    });
    const size_t level = static_cast<size_t>(found - levels.begin());
    daemon->caps[which] = point_within(daemon->on->device.points[which], mhz);
    if (found == levels.end() || level == daemon->level[which])
        return;
    note_standing(daemon, time_us);
    note_cut(daemon, which, time_us);
    const int way = level > daemon->level[which] ? 1 : -1;
    daemon->reversals += daemon->last_way[which] == -way ? 1 : 0;
    daemon->last_way[which] = way;
    ++daemon->changes;
    daemon->level[which] = level;
    daemon->first_us.try_emplace(standing(*daemon), time_us);
}

// Notes what the analyser holds the game to. It runs in this very process, between two happenings.
void note_learned(loop *daemon) {
    if (fia_is_enabled() && fia.data->mode == fia_mode_am && fia.data->cur != nullptr)
        ++daemon->learned[fia.data->cur->target_fps + 1];
}

int learned_fps(const loop &daemon) {
    const auto most =
        std::max_element(daemon.learned.begin(), daemon.learned.end(),
                         [](const auto &a, const auto &b) { return a.second < b.second; });
    return most != daemon.learned.end() ? most->first : 0;
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
        recording_header header = run_recording_header(setup.figures);
        header.properties = device.properties;
        header.answers = device.answers;
        output_write(&daemon->recording, recording_header_line(header) + "\n");
    }
    simulator_replay_from(device, lab_boot_ns);
    for (const happening_kind kind :
         {happening_kind::load, happening_kind::start, happening_kind::analyser})
        take_up_recorded(daemon, make_happening(kind, lab_boot_ns), 0);
    for (const happening &each : run_coming(game))
        take_up_recorded(daemon, each, 0);
}

// The game leaves; whether a cap is left behind.
bool end(loop *daemon, double time_us) {
    const int64_t clock_ns = lab_boot_ns + static_cast<int64_t>(time_us * 1000);
    const dvx_message leaves = make_message(DVX_CLIENT_POWERHAL, DVX_CODE_GAME, {0, 0, 60, 0});
    take_up_recorded(daemon, make_message_happening(leaves, clock_ns), time_us);
    take_up_recorded(daemon, make_happening(happening_kind::timers, clock_ns + 5 * second_ns),
                     time_us);
    return std::any_of(daemon->level, daemon->level + resource_count,
                       [](size_t level) { return level != 0; });
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
    result->learned_fps = learned_fps(*daemon);
    for (int i = 0; i < resource_count; ++i) {
        note_cut(daemon, i, time_us);
        result->cut[i] = daemon->cut_us[i] / time_us;
    }
}

// The frames of a play, whose time is the sum of their intervals; later ones are those beyond
// `median_us`, the intervals' own where that is 0.
void finish_frames(run_result *result, std::vector<float> *intervals_us, double time_us,
                   const play_state &state, double median_us) {
    const size_t count = intervals_us->size();
    std::nth_element(intervals_us->begin(), intervals_us->begin() + static_cast<long>(count / 2),
                     intervals_us->end());
    result->median_us = (*intervals_us)[count / 2];
    const double limit_us = late_factor * (median_us > 0 ? median_us : result->median_us);
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
    result->energy_mj = state.energy_mj;
    result->seconds = time_us / 1e6;
    result->frames = static_cast<double>(count);
}

// Plays frames under caps that may change from one to the next, until `more` says that it is
// enough; `take` has each interval, with the time at its end.
double play_frames(const lab_setup &setup, const game_work &game, uint64_t seed, const size_t *caps,
                   const std::function<bool(double time_us, size_t frames)> &more,
                   const std::function<void(double interval_us, double time_us)> &take,
                   double median_us, run_result *result) {
    std::vector<float> intervals_us;
    intervals_us.reserve(static_cast<size_t>(setup.minutes * 60 * setup.on.panel_hz) + 16);
    play_state state = play_begin(seed, game, setup.on);
    double time_us = 0;
    while (more(time_us, intervals_us.size())) {
        const double interval_us = play_frame(&state, game, setup.varies, setup.on, caps);
        time_us += interval_us;
        intervals_us.push_back(static_cast<float>(interval_us));
        result->warmest_c = std::max(result->warmest_c, state.chip_c);
        take(interval_us, time_us);
    }
    finish_frames(result, &intervals_us, time_us, state, median_us);
    return time_us;
}

run_result play_free(const lab_setup &setup, const game_work &game, uint64_t seed) {
    constexpr size_t no_caps[resource_count] = {};
    run_result result;
    play_frames(
        setup, game, seed, no_caps,
        [&](double time_us, size_t) { return time_us < setup.minutes * 60e6; },
        [](double, double) {}, 0, &result);
    return result;
}

// The frames of a run without caps, with the daemon's. Empty, or why its recording could not be
// written.
std::string play_capped(const lab_setup &setup, const game_work &game, uint64_t seed,
                        const run_result &free, bool recorded, run_result *result) {
    loop daemon;
    daemon.on = &setup.on;
    for (const tmk_freq_row &row : setup.figures.rows)
        daemon.levels[resource_of(std::string("TMK_") + row.name)] = cap_levels_mhz(row);
    if (recorded)
        daemon.recording = run_recording_open(setup, game, "");
    if (!daemon.recording.error.empty())
        return daemon.recording.error;
    begin(&daemon, setup, game.name);
    size_t frames = 0;
    const auto take = [&](double interval_us, double time_us) {
        const happening interval = run_interval(interval_us, time_us);
        take_up_recorded(&daemon, interval, time_us);
        if (time_us > timers_us && !std::exchange(daemon.timers_ran, true))
            take_up_recorded(&daemon, make_happening(happening_kind::timers, interval.time_ns),
                             time_us);
        if (++frames % learned_intervals == 0)
            note_learned(&daemon);
    };
    const double time_us = play_frames(
        setup, game, seed, daemon.caps,
        [&](double, size_t played) { return static_cast<double>(played) < free.frames; }, take,
        free.median_us, result);
    finish_caps(result, &daemon, time_us);
    result->caps_left = end(&daemon, time_us);
    return recorded ? output_finish(&daemon.recording) : "";
}

// How a game's plays came out, from its children's answers.
game_result collect(const game_work &game, const std::vector<run_result> &free,
                    const child_result *children) {
    game_result result;
    result.game = game.name;
    result.told = game.told;
    for (size_t i = 0; i < free.size(); ++i) {
        play_result play = {free[i], {}};
        if (!children[i].error.empty())
            result.error = children[i].error;
        else if (!child_unpack(children[i].output, &play.capped))
            result.error = "said nothing";
        else if (result.unwritten.empty())
            result.unwritten = children[i].output.substr(sizeof(play.capped));
        result.plays.push_back(play);
    }
    return result;
}

}  // namespace

std::vector<std::vector<run_result>> lab_run_free(const lab_setup &setup) {
    std::vector<std::function<std::string()>> works;
    for (const game_work &game : setup.games)
        works.push_back([&] {
            std::string answer;
            for (int i = 0; i < setup.seeds; ++i)
                answer += child_pack(play_free(setup, game, setup.seed + static_cast<uint64_t>(i)));
            return answer;
        });
    std::vector<std::vector<run_result>> runs;
    for (const child_result &child : run_in_children(works, setup.jobs)) {
        std::vector<run_result> of_game(static_cast<size_t>(setup.seeds));
        for (size_t i = 0; i < of_game.size(); ++i)
            child_unpack(child.output.substr(std::min(i * sizeof(run_result), child.output.size())),
                         &of_game[i]);
        runs.push_back(of_game);
    }
    return runs;
}

std::vector<game_result> lab_run(const lab_setup &setup,
                                 const std::vector<std::vector<run_result>> &free) {
    std::vector<std::function<std::string()>> works;
    for (size_t g = 0; g < setup.games.size(); ++g)
        for (size_t i = 0; i < free[g].size(); ++i)
            works.push_back([&, g, i] {
                const game_work &game = setup.games[g];
                const uint64_t seed = setup.seed + i;
                const bool recorded = !setup.record.empty() && i == 0;
                run_result capped;
                std::string unwritten =
                    recorded ? run_record_alone(setup, game, seed, {}, ".free") : "";
                if (unwritten.empty())
                    unwritten = play_capped(setup, game, seed, free[g][i], recorded, &capped);
                return child_pack(capped) + unwritten;
            });
    const std::vector<child_result> children = run_in_children(works, setup.jobs);
    std::vector<game_result> results;
    size_t at = 0;
    for (size_t g = 0; g < setup.games.size(); at += free[g++].size())
        results.push_back(collect(setup.games[g], free[g], &children[at]));
    return results;
}

double lab_fps_lost(const play_result &play) {
    return play.free.fps - play.capped.fps;
}

double lab_energy_saved(const play_result &play) {
    return play.free.energy_mj > 0 ? 1 - play.capped.energy_mj / play.free.energy_mj : 0;
}

std::vector<double> lab_each(const game_result &result, double (*of)(const play_result &play)) {
    std::vector<double> values;
    for (const play_result &play : result.plays)
        values.push_back(of(play));
    return values;
}
