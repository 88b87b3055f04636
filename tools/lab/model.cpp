#include "tools/lab/model.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double little_megacycles = 1.5;  // a frame's work of everything else

constexpr double headrooms[] = {1.25, 2.0, 0};  // by governor: how much faster than needed

// How governors move: what a frame needs is expected by an average with the half-life that the
// kernel's load tracking has, clocks go down no sooner than this after they went down last, and a
// finger on the screen keeps the big cluster from going below a share of its highest clock.
constexpr double half_life_us = 32000;
constexpr double lower_after_us = 20000;
constexpr double touch_share = 0.5;  // of time that the screen is touched
constexpr uint64_t touch_frames = 120;
constexpr double touch_floor = 0.5;  // of the highest clock

constexpr double limiter_slack = 0.02;  // of a panel's rate that a limit divides

struct frame_times {
    double cpu_ms;
    double gpu_ms;
    double whole_ms;
};

frame_times times_at(const game_work &game, double factor, double cpu_mhz, double gpu_mhz) {
    frame_times times;
    times.cpu_ms = factor * (game.cpu_fixed_ms + 1000 * game.cpu_megacycles / cpu_mhz);
    times.gpu_ms = factor * (game.gpu_fixed_ms + 1000 * game.gpu_megacycles / gpu_mhz);
    times.whole_ms =
        game.serial ? times.cpu_ms + times.gpu_ms : std::max(times.cpu_ms, times.gpu_ms);
    return times;
}

double scene_factor_of(const play_state &state, const variation &varies) {
    const uint64_t scene = state.frame / varies.scene_frames;
    return std::max(1 + varies.scene * normal_at(state.scene, scene), 0.5);
}

double next_factor(play_state *state, const variation &varies) {
    const uint64_t frame = state->frame;
    if (!varies.factors.empty())
        return varies.factors[frame % varies.factors.size()];
    if (frame % varies.scene_frames == 0)
        state->scene_factor = scene_factor_of(*state, varies);
    const double wave =
        1 + varies.drift *
                sin(2 * pi * static_cast<double>(frame) / varies.drift_frames + state->drift_phase);
    const double noise = std::max(1 + varies.noise * normal_at(state->noise, frame), 0.2);
    const bool heavy = uniform_at(state->heavy, frame) < varies.heavy;
    return state->scene_factor * wave * noise * (heavy ? varies.heavy_factor : 1);
}

// The lowest point of a resource, no higher than its cap, that holds `limit_ms`; the cap where none
// does.
size_t lowest_point(const std::vector<operating_point> &points, size_t cap, double fixed_ms,
                    double megacycles, double limit_ms) {
    const double needed_mhz =
        limit_ms > fixed_ms ? 1000 * megacycles / (limit_ms - fixed_ms) : points[0].mhz;
    size_t at = points.size() - 1;
    while (at > cap && points[at].mhz < needed_mhz)
        --at;
    return at;
}

// A frame's time between two that are seen, of the panel or of the game's own limiter.
double frame_us(const game_work &game, const environment &on) {
    return 1e6 / (game.limit_fps > 0 ? std::min(game.limit_fps, on.panel_hz) : on.panel_hz);
}

void pick_points(play_state *state, const game_work &game, const environment &on,
                 const size_t *caps) {
    size_t wanted[resource_count];
    std::copy_n(caps, resource_count, wanted);
    const std::vector<operating_point> *points = on.device.points;
    const std::vector<operating_point> &big = points[resource_big];
    const std::vector<operating_point> &gpu = points[resource_gpu];
    if (on.picks != governor::max) {
        const double factor = state->expected;
        const double limit_ms =
            frame_us(game, on) / 1000 / headrooms[static_cast<size_t>(on.picks)];
        wanted[resource_little] = lowest_point(points[resource_little], caps[resource_little], 0,
                                               little_megacycles, limit_ms);
        // Where one waits for the other, each has the share of the frame that it has at the caps.
        double cpu_limit_ms = limit_ms;
        double gpu_limit_ms = limit_ms;
        if (game.serial) {
            const frame_times full =
                times_at(game, factor, big[caps[resource_big]].mhz, gpu[caps[resource_gpu]].mhz);
            cpu_limit_ms = limit_ms * full.cpu_ms / full.whole_ms;
            gpu_limit_ms = limit_ms - cpu_limit_ms;
        }
        wanted[resource_big] = lowest_point(big, caps[resource_big], factor * game.cpu_fixed_ms,
                                            factor * game.cpu_megacycles, cpu_limit_ms);
        wanted[resource_gpu] = lowest_point(gpu, caps[resource_gpu], factor * game.gpu_fixed_ms,
                                            factor * game.gpu_megacycles, gpu_limit_ms);
        if (uniform_at(state->touch, state->frame / touch_frames) < touch_share)
            wanted[resource_big] =
                std::min(wanted[resource_big],
                         std::max(caps[resource_big], point_within(big, touch_floor * big[0].mhz)));
    }
    for (int i = 0; i < resource_count; ++i) {
        if (wanted[i] > state->picked[i]) {
            if (state->time_us - state->lowered_us[i] < lower_after_us)
                wanted[i] = std::max(state->picked[i], caps[i]);
            else
                state->lowered_us[i] = state->time_us;
        }
        state->picked[i] = wanted[i];
    }
}

// A resource's energy over `whole_ms`, of which `busy_ms` at work.
double energy_mj(const operating_point &point, double busy_ms, double whole_ms) {
    busy_ms = std::min(busy_ms, whole_ms);
    return (point.busy_mw * busy_ms + point.idle_mw * (whole_ms - busy_ms)) / 1000;
}

void warm(play_state *state, const heat_model &heat, double chip_mj, double interval_us) {
    const double towards_c = heat.ambient_c + heat.k_per_w * chip_mj / interval_us * 1000;
    state->chip_c +=
        (towards_c - state->chip_c) * std::min(interval_us / (heat.seconds * 1e6), 1.0);
    const double time_us = state->time_us;
    if (time_us - state->looked_us < heat.look_s * 1e6)
        return;
    state->looked_us = time_us;
    if (state->chip_c > heat.held_c)
        ++state->held_back;
    else if (state->chip_c < heat.free_c && state->held_back > 0)
        --state->held_back;
}

void spend(play_state *state, const environment &on, const frame_times &times, double interval_us) {
    const std::vector<operating_point> *points = on.device.points;
    const size_t *picked = state->picked;
    const double busy_ms[resource_count] = {
        times.cpu_ms,
        1000 * little_megacycles / points[resource_little][picked[resource_little]].mhz,
        times.gpu_ms};
    double chip_mj = 0;
    for (int i = 0; i < resource_count; ++i)
        chip_mj += energy_mj(points[i][picked[i]], busy_ms[i], interval_us / 1000);
    state->energy_mj += chip_mj + on.base_mw * interval_us / 1e6;
    if (on.device.heat.k_per_w > 0)
        warm(state, on.device.heat, chip_mj, interval_us);
}

// How many periods of the panel a frame of a game's limiter stands for at least.
int64_t periods_a_frame(const game_work &game, const environment &on) {
    const double ratio = game.limit_fps > 0 ? on.panel_hz / game.limit_fps : 1;
    return std::fabs(ratio - std::round(ratio)) < limiter_slack * ratio
               ? std::max<int64_t>(std::lround(ratio), 1)
               : 1;
}

}  // namespace

play_state play_begin(uint64_t seed, const game_work &game, const environment &on) {
    play_state state;
    const auto stream = [&](stream_purpose purpose) { return stream_of(seed, game.name, purpose); };
    state.noise = stream(stream_purpose::noise);
    state.heavy = stream(stream_purpose::heavy);
    state.scene = stream(stream_purpose::scene);
    state.display = stream(stream_purpose::display);
    state.touch = stream(stream_purpose::touch);
    state.drift_phase = 2 * pi * uniform_at(stream(stream_purpose::drift), 0);
    state.chip_c = on.device.heat.ambient_c;
    return state;
}

double play_frame(play_state *state, const game_work &game, const variation &varies,
                  const environment &on, const size_t caps[resource_count]) {
    const double factor = next_factor(state, varies);
    size_t limits[resource_count];
    for (int i = 0; i < resource_count; ++i)
        limits[i] = std::max(caps[i], std::min(state->held_back, on.device.points[i].size() - 1));
    pick_points(state, game, on, limits);
    const auto mhz = [&](const size_t *points, int which) {
        return on.device.points[which][points[which]].mhz;
    };
    frame_times times =
        times_at(game, factor, mhz(state->picked, resource_big), mhz(state->picked, resource_gpu));
    // A frame that does not come to its end in time has the governors go up, and the rest of it is
    // drawn at the caps.
    const double due_ms = frame_us(game, on) / 1000;
    if (times.whole_ms > due_ms) {
        const frame_times capped =
            times_at(game, factor, mhz(limits, resource_big), mhz(limits, resource_gpu));
        const double rest = 1 - due_ms / times.whole_ms;
        times.whole_ms = due_ms + rest * capped.whole_ms;
    }

    // A frame is seen at the end of the panel's period in which it is ready, one a period. With two
    // buffers the next one is begun then; with three, as soon as the one before the last is seen.
    const double period_us = 1e6 / on.panel_hz;
    const int64_t periods = periods_a_frame(game, on);
    const double last_us = static_cast<double>(state->shown) * period_us;
    const double free_us = static_cast<double>(state->shown_before) * period_us;
    double begun_us = on.buffers == 2 ? last_us : std::max(state->time_us, free_us);
    if (game.limit_fps > 0 && periods == 1)
        begun_us = std::max(begun_us, state->begun_us + frame_us(game, on));
    state->begun_us = begun_us;
    state->time_us = begun_us + times.whole_ms * 1000;
    const int64_t ready = static_cast<int64_t>(ceil(state->time_us / period_us));
    const int64_t seen = std::max(ready, state->shown + periods);
    const double whole_us = static_cast<double>(seen - state->shown) * period_us;
    const double late_us = varies.display_us * normal_at(state->display, state->frame);
    const double interval_us = whole_us + late_us - state->late_us;
    spend(state, on, times, whole_us);
    state->expected += (1 - exp2(-whole_us / half_life_us)) * (factor - state->expected);
    ++state->frame;
    state->shown_before = state->shown;
    state->shown = seen;
    state->late_us = late_us;
    return std::max(interval_us, 1.0);
}
