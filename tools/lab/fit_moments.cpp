#include "tools/lab/fit_moments.h"

#include <gsl/gsl_blas.h>
#include <gsl/gsl_linalg.h>

#include <algorithm>

namespace {

constexpr size_t frames_least = 60;       // under a pair of caps, for it to count
constexpr uint64_t first_seed = 3000001;  // of trials: nobody records with those
constexpr uint64_t single_plays = 24;
constexpr double shrinkage =
    0.8;  // of what moments have in common: so few plays show too much of it
constexpr double late_factor = 1.5;    // of the interval that the game aims at
constexpr double model_error = 0.002;  // of a period
constexpr double power_error = 0.005;  // of the mean power

// What frames came to, each under its caps.
struct moment_sums {
    std::vector<double> us;
    std::vector<size_t> late;
    std::vector<held_energy> energy;
};

moment_sums no_sums(const fit_problem &problem) {
    const size_t count = problem.held->caps.size();
    return {std::vector<double>(count), std::vector<size_t>(count),
            std::vector<held_energy>(count)};
}

void add_interval(moment_sums *sums, const fit_problem &problem, size_t caps, double interval_us) {
    const double expected_us =
        problem.like.limit_fps > 0 ? 1e6 / problem.like.limit_fps : problem.period_us;
    sums->us[caps] += interval_us;
    sums->late[caps] += interval_us > late_factor * expected_us ? 1 : 0;
}

double watts(const held_energy &energy) {
    return energy.mj / energy.seconds / 1000;
}

// The mean power under all caps, in W.
double mean_watts_of(const fit_problem &problem, const moment_sums &sums) {
    double sum = 0;
    double count = 0;
    for (const moment_place &place : problem.places)
        if (place.kind == moment_kind::power) {
            sum += watts(sums.energy[place.caps]);
            ++count;
        }
    return count > 0 ? sum / count : 0;
}

moment_list moments_of(const fit_problem &problem, const moment_sums &sums) {
    const double mean_watts = mean_watts_of(problem, sums);
    moment_list moments;
    for (const auto &[kind, caps] : problem.places) {
        const double frames = static_cast<double>(problem.frames[caps]);
        if (kind == moment_kind::interval)
            moments.push_back(sums.us[caps] / frames / problem.period_us);
        else if (kind == moment_kind::late)
            moments.push_back(static_cast<double>(sums.late[caps]) / frames);
        else
            moments.push_back(watts(sums.energy[caps]) - mean_watts);
    }
    return moments;
}

moment_list simulated(const fit_problem &problem, const game_work &game, uint64_t seed) {
    moment_sums sums = no_sums(problem);
    play_state state = play_begin(seed, game, problem.on);
    for (const held_frame &frame : problem.held->frames) {
        const held_caps &caps = problem.held->caps[frame.caps];
        const size_t points[resource_count] = {caps.big, 0, caps.gpu};
        const double before_mj = state.energy_mj;
        const double interval_us = play_frame(&state, game, *problem.varies, problem.on, points);
        add_interval(&sums, problem, frame.caps, interval_us);
        sums.energy[frame.caps].mj += state.energy_mj - before_mj;
        sums.energy[frame.caps].seconds += interval_us / 1e6;
    }
    return moments_of(problem, sums);
}

double model_error_of(const fit_problem &problem, const moment_place &place) {
    switch (place.kind) {
        case moment_kind::interval:
            return model_error;
        case moment_kind::late:
            return 1 / static_cast<double>(problem.frames[place.caps]);
        case moment_kind::power:
            break;
    }
    return power_error * problem.mean_watts;
}

}  // namespace

std::string fit_observe(fit_problem *problem) {
    const held_frames &held = *problem->held;
    problem->frames.resize(held.caps.size());
    for (const held_frame &frame : held.frames)
        ++problem->frames[frame.caps];
    for (size_t caps = 0; caps < held.caps.size(); ++caps)
        if (problem->frames[caps] >= frames_least)
            problem->counted.push_back(caps);
    if (problem->counted.size() < 2)
        return "its caps never moved for long, which tells nothing of its work: dvxctl lab plan "
               "has holds that do";
    moment_sums sums = no_sums(*problem);
    for (const held_frame &frame : held.frames)
        add_interval(&sums, *problem, frame.caps, frame.interval_us);
    std::copy(held.energy.begin(), held.energy.end(), sums.energy.begin());
    for (const size_t caps : problem->counted) {
        problem->places.push_back({moment_kind::interval, caps});
        problem->places.push_back({moment_kind::late, caps});
        if (sums.energy[caps].seconds > 0)
            problem->places.push_back({moment_kind::power, caps});
    }
    problem->observed = moments_of(*problem, sums);
    problem->mean_watts = mean_watts_of(*problem, sums);
    return {};
}

game_work fit_game_of(const fit_problem &problem, const figure_roots &at) {
    game_work game = problem.like;
    game.cpu_fixed_ms = at[fitted_cpu_fixed] * at[fitted_cpu_fixed];
    game.cpu_megacycles = at[fitted_cpu_megacycles] * at[fitted_cpu_megacycles];
    game.gpu_fixed_ms = at[fitted_gpu_fixed] * at[fitted_gpu_fixed];
    game.gpu_megacycles = at[fitted_gpu_megacycles] * at[fitted_gpu_megacycles];
    return game;
}

moment_list fit_simulated(const fit_problem &problem, const figure_roots &at) {
    const game_work game = fit_game_of(problem, at);
    moment_list mean(problem.observed.size());
    for (size_t play = 0; play < problem.plays; ++play) {
        const moment_list moments = simulated(problem, game, first_seed + play);
        for (size_t i = 0; i < mean.size(); ++i)
            mean[i] += moments[i] / static_cast<double>(problem.plays);
    }
    return mean;
}

std::vector<moment_list> fit_trials(const fit_problem &problem, const figure_roots &at,
                                    uint64_t batch) {
    const game_work game = fit_game_of(problem, at);
    std::vector<moment_list> trials;
    const uint64_t first = first_seed + problem.plays + batch * single_plays;
    for (uint64_t play = 0; play < single_plays; ++play)
        trials.push_back(simulated(problem, game, first + play));
    return trials;
}

void fit_take_trials(fit_problem *problem, const std::vector<moment_list> &trials) {
    const size_t size = problem->places.size();
    const double count = static_cast<double>(trials.size());
    moment_list mean(size);
    for (const moment_list &trial : trials)
        for (size_t i = 0; i < size; ++i)
            mean[i] += trial[i] / count;
    problem->factor.assign(size * size, 0);
    const double each = (1 + 1 / static_cast<double>(problem->plays)) / (count - 1);
    for (size_t i = 0; i < size; ++i) {
        for (size_t k = 0; k < size; ++k)
            for (const moment_list &trial : trials)
                problem->factor[i * size + k] +=
                    each * (trial[i] - mean[i]) * (trial[k] - mean[k]) * (i == k ? 1 : shrinkage);
        const double error = model_error_of(*problem, problem->places[i]);
        problem->factor[i * size + i] += error * error;
    }
    gsl_matrix_view matrix = gsl_matrix_view_array(problem->factor.data(), size, size);
    gsl_linalg_cholesky_decomp1(&matrix.matrix);
}

moment_list fit_whitened(const fit_problem &problem, moment_list off) {
    const gsl_matrix_const_view factor =
        gsl_matrix_const_view_array(problem.factor.data(), off.size(), off.size());
    gsl_vector_view vector = gsl_vector_view_array(off.data(), off.size());
    gsl_blas_dtrsv(CblasLower, CblasNoTrans, CblasNonUnit, &factor.matrix, &vector.vector);
    return off;
}
