#include "tools/lab/model.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double expectation_weight = 0.2;  // of the latest frame
constexpr double little_megacycles = 1.5;   // a frame's work of everything else

// Power at the highest level, in mW, all of it busy: a phone's big cores in a game, its little ones
// beside it, its GPU; each as measurements of phones of this class put it, of which only the ratio
// matters. Leakage flows whether busy or not.
struct power_row {
    double dynamic_mw;
    double leakage_mw;
};
constexpr power_row powers[resource_count] = {{2000, 120}, {300, 20}, {2200, 130}};

// The voltage at a frequency, as a share of the highest: a rail goes from about half to all of it.
constexpr double voltage_floor = 0.5;

constexpr double headrooms[] = {1.25, 2.0, 0};  // by governor: how much faster than needed

double share_of_voltage(double share_of_frequency) {
    return voltage_floor + (1 - voltage_floor) * share_of_frequency;
}

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

double standard_normal(std::mt19937_64 *random) {
    // The sum of twelve uniform parts, less six: close enough, and quick.
    uint64_t bits[3] = {(*random)(), (*random)(), (*random)()};
    double sum = -6;
    for (const uint64_t each : bits)
        for (int part = 0; part < 4; ++part)
            sum += static_cast<double>(each >> (16 * part) & 0xFFFF) / 65536;
    return sum;
}

double uniform(std::mt19937_64 *random) {
    return static_cast<double>((*random)() >> 11) / 9007199254740992.0;
}

double next_factor(play_state *state, const variation &varies) {
    if (!varies.factors.empty())
        return varies.factors[state->frame % varies.factors.size()];
    if (state->time_us >= state->scene_end_us) {
        state->scene_factor = std::max(1 + varies.scene * standard_normal(&state->random), 0.5);
        state->scene_end_us = state->time_us + varies.scene_s * 1e6;
    }
    const double wave = 1 + varies.drift * sin(2 * pi * state->time_us / (varies.drift_s * 1e6) +
                                               state->drift_phase);
    const double noise = std::max(1 + varies.noise * standard_normal(&state->random), 0.2);
    const bool heavy = uniform(&state->random) < varies.heavy;
    return state->scene_factor * wave * noise * (heavy ? varies.heavy_factor : 1);
}

// The lowest level of a resource, no higher than its cap, that holds `limit_ms`; the cap where none
// does.
size_t lowest_level(const std::vector<double> &mhz, size_t cap, double fixed_ms, double megacycles,
                    double limit_ms) {
    size_t level = mhz.size() - 1;
    while (level > cap && fixed_ms + 1000 * megacycles / mhz[level] > limit_ms)
        --level;
    return level;
}

void pick_levels(const play_state &state, const game_work &game, governor picks,
                 const device_levels &levels, const size_t *caps, size_t *picked) {
    std::copy_n(caps, resource_count, picked);
    if (picks == governor::max)
        return;
    const double factor = state.expected;
    double limit_ms = state.period_us / 1000 / headrooms[static_cast<size_t>(picks)];
    picked[resource_little] = lowest_level(levels.mhz[resource_little], caps[resource_little], 0,
                                           little_megacycles, limit_ms);
    // Where one waits for the other, each has the share of the frame that it has at the caps.
    double cpu_limit_ms = limit_ms;
    double gpu_limit_ms = limit_ms;
    if (game.serial) {
        const frame_times full =
            times_at(game, factor, levels.mhz[resource_big][caps[resource_big]],
                     levels.mhz[resource_gpu][caps[resource_gpu]]);
        cpu_limit_ms = limit_ms * full.cpu_ms / full.whole_ms;
        gpu_limit_ms = limit_ms - cpu_limit_ms;
    }
    picked[resource_big] =
        lowest_level(levels.mhz[resource_big], caps[resource_big], factor * game.cpu_fixed_ms,
                     factor * game.cpu_megacycles, cpu_limit_ms);
    picked[resource_gpu] =
        lowest_level(levels.mhz[resource_gpu], caps[resource_gpu], factor * game.gpu_fixed_ms,
                     factor * game.gpu_megacycles, gpu_limit_ms);
}

// Dynamic power by frequency and voltage squared while busy, leakage all the time.
double energy_mj(const power_row &power, double mhz, double full_mhz, double busy_ms,
                 double whole_ms) {
    const double frequency = mhz / full_mhz;
    const double voltage = share_of_voltage(frequency);
    return (power.dynamic_mw * frequency * voltage * voltage * std::min(busy_ms, whole_ms) +
            power.leakage_mw * voltage * whole_ms) /
           1000;
}

void spend(play_state *state, const device_levels &levels, const size_t *picked,
           const frame_times &times, double interval_ms) {
    const double busy_ms[resource_count] = {
        times.cpu_ms,
        1000 * little_megacycles / levels.mhz[resource_little][picked[resource_little]],
        times.gpu_ms};
    for (int i = 0; i < resource_count; ++i)
        state->energy_mj += energy_mj(powers[i], levels.mhz[i][picked[i]], levels.mhz[i][0],
                                      busy_ms[i], interval_ms);
}

}  // namespace

const char *const resource_names[resource_count] = {"CLUSTER1", "CLUSTER0", "GPU"};

int resource_of(const std::string &name) {
    for (int i = 0; i < resource_count; ++i)
        if (name == std::string("TMK_") + resource_names[i])
            return i;
    return -1;
}

device_levels levels_of(const simulated_figures &figures) {
    device_levels levels;
    for (const tmk_freq_row &row : figures.rows) {
        const int which = resource_of(std::string("TMK_") + row.name);
        const double per_mhz = row.type == freq_type_gpu ? 1e6 : 1e3;
        for (uint32_t level = 0; which >= 0 && level < freq_level_slots && row.freqs[level] != 0;
             ++level)
            levels.mhz[which].push_back(row.freqs[level] / per_mhz);
    }
    return levels;
}

play_state play_begin(uint64_t seed, double panel_hz) {
    play_state state;
    state.random.seed(seed);
    state.period_us = 1e6 / panel_hz;
    state.drift_phase = 2 * pi * uniform(&state.random);
    return state;
}

double play_frame(play_state *state, const game_work &game, const variation &varies, governor picks,
                  const device_levels &levels, const size_t caps[resource_count]) {
    const double factor = next_factor(state, varies);
    size_t picked[resource_count];
    pick_levels(*state, game, picks, levels, caps, picked);
    const frame_times times = times_at(game, factor, levels.mhz[resource_big][picked[resource_big]],
                                       levels.mhz[resource_gpu][picked[resource_gpu]]);
    state->expected += expectation_weight * (factor - state->expected);
    ++state->frame;

    // A frame is seen at the end of the panel's period in which it is ready, one a period. With two
    // buffers the next one is begun then; with three, as soon as the one before the last is seen.
    const double last_us = static_cast<double>(state->shown) * state->period_us;
    const double free_us = static_cast<double>(state->shown_before) * state->period_us;
    const double begun_us = varies.buffers == 2 ? last_us : std::max(state->time_us, free_us);
    state->time_us = begun_us + times.whole_ms * 1000;
    const int64_t ready = static_cast<int64_t>(ceil(state->time_us / state->period_us));
    const int64_t seen = std::max(ready, state->shown + 1);
    const double late_us = varies.display_us * standard_normal(&state->random);
    const double interval_us =
        static_cast<double>(seen - state->shown) * state->period_us + late_us - state->late_us;
    spend(state, levels, picked, times,
          static_cast<double>(seen - state->shown) * state->period_us / 1000);
    state->shown_before = state->shown;
    state->shown = seen;
    state->late_us = late_us;
    return std::max(interval_us, 1.0);
}
