#include "tools/lab/fit.h"

#include <gsl/gsl_blas.h>
#include <gsl/gsl_matrix.h>
#include <gsl/gsl_multifit_nlinear.h>
#include <gsl/gsl_vector.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <numeric>

#include "tools/lab/fit_moments.h"

namespace {

// Where the frames tell nothing of a figure, the lab's own games do: the mean and the spread of
// their roots.
constexpr figure_roots usual = {1.7, 2.3, 1.6, 1.6};
constexpr figure_roots spread = {1.3, 1.9, 0.8, 0.8};

constexpr size_t frames_simulated = 100000;  // in a trial, as often as the recordings go into that
constexpr size_t plays_most = 4;
constexpr double root_step = 0.03;  // of derivatives
constexpr uint64_t starts_drawn = 4000;
constexpr long starts_played = 40;
constexpr size_t iterations_most = 25;
constexpr int rounds_most = 4;
constexpr double way_back = 0.3;
constexpr double limited_share = 0.9;  // of frames at a limiter's interval
// The normal distribution's, and half as much again: chosen on 80 games, so that 95 of 100
// intervals hold; scripts/lab-twins tries it on others.
constexpr double deviations_95 = 1.96 * 1.5;

// What moments and the usual figures are off by, in standard deviations.
void residuals(const fit_problem &problem, const figure_roots &at, double *off) {
    moment_list moments = fit_simulated(problem, at);
    for (size_t i = 0; i < moments.size(); ++i)
        moments[i] -= problem.observed[i];
    for (const double each : fit_whitened(problem, moments))
        *off++ = each;
    for (size_t i = 0; i < fitted_count; ++i)
        *off++ = (std::fabs(at[i]) - usual[i]) / spread[i];
}

figure_roots roots_of(const gsl_vector *x) {
    figure_roots at;
    for (size_t i = 0; i < fitted_count; ++i)
        at[i] = gsl_vector_get(x, i);
    return at;
}

int residuals_for_gsl(const gsl_vector *x, void *problem, gsl_vector *off) {
    residuals(*static_cast<const fit_problem *>(problem), roots_of(x), off->data);
    return GSL_SUCCESS;
}

int derivatives_for_gsl(const gsl_vector *x, void *given, gsl_matrix *jacobian) {
    const fit_problem &problem = *static_cast<const fit_problem *>(given);
    std::vector<double> here(jacobian->size1), there(jacobian->size1);
    residuals(problem, roots_of(x), here.data());
    for (size_t column = 0; column < fitted_count; ++column) {
        figure_roots at = roots_of(x);
        at[column] += root_step;
        residuals(problem, at, there.data());
        for (size_t row = 0; row < here.size(); ++row)
            gsl_matrix_set(jacobian, row, column, (there[row] - here[row]) / root_step);
    }
    return GSL_SUCCESS;
}

// A frame's time under caps by arithmetic, without how work varies.
double frame_periods(const fit_problem &problem, const game_work &game, const held_caps &caps) {
    const double cpu_mhz = problem.on.device.points[resource_big][caps.big].mhz;
    const double gpu_mhz = problem.on.device.points[resource_gpu][caps.gpu].mhz;
    const double cpu_ms = game.cpu_fixed_ms + 1000 * game.cpu_megacycles / cpu_mhz;
    const double gpu_ms = game.gpu_fixed_ms + 1000 * game.gpu_megacycles / gpu_mhz;
    const double whole_ms = game.serial ? cpu_ms + gpu_ms : std::max(cpu_ms, gpu_ms);
    const double least = game.limit_fps > 0 ? problem.on.panel_hz / game.limit_fps : 1;
    return std::max(whole_ms * 1000 / problem.period_us, least);
}

// How far the mean intervals of such a game lie from those that were recorded, by arithmetic.
double arithmetic_off(const fit_problem &problem, const figure_roots &at) {
    const game_work game = fit_game_of(problem, at);
    double off = 0;
    for (size_t i = 0; i < problem.places.size(); ++i) {
        const auto &[kind, caps] = problem.places[i];
        if (kind != moment_kind::interval)
            continue;
        const double difference =
            frame_periods(problem, game, problem.held->caps[caps]) - problem.observed[i];
        off += difference * difference;
    }
    return off;
}

// What moments and the usual figures are off by, squared and summed up.
double simulated_off(const fit_problem &problem, const figure_roots &at) {
    std::vector<double> off(problem.places.size() + fitted_count);
    residuals(problem, at, off.data());
    return std::inner_product(off.begin(), off.end(), off.begin(), 0.0);
}

struct fit_start {
    double off = 0;
    figure_roots at = usual;
};

// Where to begin: of many sets of figures, spread as those of the lab's own games, the nearest ones
// by arithmetic, the nearest first.
std::vector<fit_start> starts_of(const fit_problem &problem) {
    const random_stream stream = stream_of(0, "start", stream_purpose::draw);
    std::vector<fit_start> all(starts_drawn);
    for (uint64_t start = 0; start < starts_drawn; ++start) {
        figure_roots &at = all[start].at;
        for (uint64_t which = 0; which < fitted_count; ++which)
            at[which] =
                std::fabs(usual[which] +
                          1.5 * spread[which] * normal_at(stream, start * fitted_count + which));
        all[start].off = arithmetic_off(problem, at);
    }
    std::partial_sort(all.begin(), all.begin() + starts_played, all.end(),
                      [](const fit_start &a, const fit_start &b) { return a.off < b.off; });
    all.resize(starts_played);
    return all;
}

// Of those, the nearest when it is played.
figure_roots start_among(fit_problem problem, std::vector<fit_start> starts) {
    problem.plays = 1;
    for (fit_start &start : starts)
        start.off = simulated_off(problem, start.at);
    return std::min_element(starts.begin(), starts.end(),
                            [](const fit_start &a, const fit_start &b) { return a.off < b.off; })
        ->at;
}

using root_matrix = std::array<figure_roots, fitted_count>;

// A fit of one shape.
struct shape_fit {
    figure_roots at;
    root_matrix covariance;            // of the roots
    std::vector<figure_roots> slopes;  // of each moment, in its deviations
    double chi_squared = 0;
};

shape_fit fit_shape(fit_problem *problem, figure_roots start) {
    gsl_multifit_nlinear_fdf function = {};
    function.f = residuals_for_gsl;
    function.df = derivatives_for_gsl;
    function.n = problem->observed.size() + fitted_count;
    function.p = fitted_count;
    function.params = problem;
    const gsl_multifit_nlinear_parameters parameters = gsl_multifit_nlinear_default_parameters();
    const std::unique_ptr<gsl_multifit_nlinear_workspace, decltype(&gsl_multifit_nlinear_free)>
        workspace(gsl_multifit_nlinear_alloc(gsl_multifit_nlinear_trust, &parameters, function.n,
                                             function.p),
                  gsl_multifit_nlinear_free);
    const gsl_vector_view x = gsl_vector_view_array(start.data(), start.size());
    gsl_multifit_nlinear_init(&x.vector, &function, workspace.get());
    int info = 0;
    gsl_multifit_nlinear_driver(iterations_most, 1e-3, 1e-3, 1e-4, nullptr, nullptr, &info,
                                workspace.get());
    shape_fit fit;
    fit.at = roots_of(workspace->x);
    gsl_blas_ddot(workspace->f, workspace->f, &fit.chi_squared);
    gsl_matrix_view inverse =
        gsl_matrix_view_array(fit.covariance[0].data(), fitted_count, fitted_count);
    gsl_multifit_nlinear_covar(workspace->J, 0, &inverse.matrix);
    for (size_t row = 0; row < problem->places.size(); ++row) {
        fit.slopes.emplace_back();
        for (size_t column = 0; column < fitted_count; ++column)
            fit.slopes.back()[column] = gsl_matrix_get(workspace->J, row, column);
    }
    return fit;
}

// Fits again from where the fit has ended, a part of the way back to the usual figures, as long as
// that is better: at 0 a root has no slope and never leaves it, and valleys are long.
shape_fit fit_shape_again(fit_problem *problem, const std::vector<fit_start> &starts) {
    shape_fit fit = fit_shape(problem, start_among(*problem, starts));
    for (int round = 0; round < rounds_most; ++round) {
        figure_roots back;
        for (size_t i = 0; i < fitted_count; ++i)
            back[i] = std::fabs(fit.at[i]) + way_back * (usual[i] - std::fabs(fit.at[i]));
        const shape_fit next = fit_shape(problem, back);
        if (next.chi_squared > fit.chi_squared - 0.5)
            break;
        fit = next;
    }
    return fit;
}

root_matrix product(const root_matrix &a, const root_matrix &b) {
    root_matrix result = {};
    for (size_t i = 0; i < fitted_count; ++i)
        for (size_t k = 0; k < fitted_count; ++k)
            for (size_t j = 0; j < fitted_count; ++j)
                result[i][j] += a[i][k] * b[k][j];
    return result;
}

void add_square(root_matrix *sum, const figure_roots &of, double factor) {
    for (size_t i = 0; i < fitted_count; ++i)
        for (size_t k = 0; k < fitted_count; ++k)
            (*sum)[i][k] += factor * of[i] * of[k];
}

// Brings in that the moments of a play go up and down together, scene by scene: least squares takes
// them for independent, so what it takes for the covariance is too small. The sandwich estimator,
// with the inverse of the normal equations around what single plays show, and not those that the
// weights were taken from.
void widen(shape_fit *fit, const fit_problem &problem) {
    const std::vector<moment_list> trials = fit_trials(problem, fit->at, 1);
    std::vector<figure_roots> pulls(trials.size());  // on each figure, of each play
    figure_roots mean = {};
    const double count = static_cast<double>(trials.size());
    for (size_t play = 0; play < trials.size(); ++play) {
        const moment_list off = fit_whitened(problem, trials[play]);
        pulls[play] = {};
        for (size_t which = 0; which < fitted_count; ++which) {
            for (size_t i = 0; i < off.size(); ++i)
                pulls[play][which] += fit->slopes[i][which] * off[i];
            mean[which] += pulls[play][which] / count;
        }
    }
    root_matrix between = {};
    for (figure_roots &pull : pulls) {
        for (size_t which = 0; which < fitted_count; ++which)
            pull[which] -= mean[which];
        add_square(&between, pull, (1 + 1 / static_cast<double>(problem.plays)) / (count - 1));
    }
    for (size_t which = 0; which < fitted_count; ++which)
        between[which][which] += 1 / (spread[which] * spread[which]);
    fit->covariance = product(product(fit->covariance, between), fit->covariance);
}

// What is sure of a sum of figures, each with its factor.
fitted_figure sum_of(const shape_fit &fit, const figure_roots &factors) {
    double value = 0;
    double variance = 0;
    for (size_t i = 0; i < fitted_count; ++i) {
        value += factors[i] * fit.at[i] * fit.at[i];
        for (size_t k = 0; k < fitted_count; ++k)
            variance += 4 * factors[i] * fit.at[i] * factors[k] * fit.at[k] * fit.covariance[i][k];
    }
    const double reach = deviations_95 * std::sqrt(variance);
    return {value, std::max(value - reach, 0.0), value + reach};
}

fitted_figure figure_of(const shape_fit &fit, size_t which) {
    const double root = std::fabs(fit.at[which]);
    const double reach = deviations_95 * std::sqrt(fit.covariance[which][which]);
    const double low = std::max(root - reach, 0.0);
    return {root * root, low * low, (root + reach) * (root + reach)};
}

// The game's own limiter: frames under full caps stand apart by the same number of periods, two or
// more. 0: it has none.
double limit_of(const held_frames &held, double period_us) {
    std::vector<size_t> apart(8);
    size_t count = 0;
    for (const held_frame &frame : held.frames) {
        const held_caps &caps = held.caps[frame.caps];
        if (caps.big != 0 || caps.gpu != 0)
            continue;
        const double periods = std::round(frame.interval_us / period_us);
        ++apart[std::min(static_cast<size_t>(periods), apart.size() - 1)];
        ++count;
    }
    for (size_t periods = 2; periods + 1 < apart.size(); ++periods)
        if (static_cast<double>(apart[periods]) > limited_share * static_cast<double>(count))
            return 1e6 / period_us / static_cast<double>(periods);
    return 0;
}

std::vector<fitted_rate> rates_of(const fit_problem &problem, const figure_roots &at) {
    const moment_list moments = fit_simulated(problem, at);
    std::vector<fitted_rate> rates;
    for (size_t i = 0; i < moments.size(); ++i) {
        const auto &[kind, caps] = problem.places[i];
        if (kind == moment_kind::interval)
            rates.push_back({problem.held->caps[caps], problem.frames[caps],
                             1e6 / (problem.observed[i] * problem.period_us),
                             1e6 / (moments[i] * problem.period_us)});
    }
    return rates;
}

// The frame times at the highest and the lowest clocks that were held.
void tell_times(const shape_fit &fit, const fit_problem &problem, fitted_game *fitted) {
    size_t lowest_big = 0, lowest_gpu = 0;
    for (const size_t caps : problem.counted) {
        lowest_big = std::max(lowest_big, problem.held->caps[caps].big);
        lowest_gpu = std::max(lowest_gpu, problem.held->caps[caps].gpu);
    }
    const auto &big = problem.on.device.points[resource_big];
    const auto &gpu = problem.on.device.points[resource_gpu];
    const double big_mhz[2] = {big[0].mhz, big[lowest_big].mhz};
    const double gpu_mhz[2] = {gpu[0].mhz, gpu[lowest_gpu].mhz};
    for (size_t i = 0; i < 2; ++i) {
        const double cpu = 1000 / big_mhz[i];  // ms a megacycle
        const double gpu_part = 1000 / gpu_mhz[i];
        fitted->cpu_ms[i] = sum_of(fit, {1, cpu, 0, 0});
        fitted->gpu_ms[i] = sum_of(fit, {0, 0, 1, gpu_part});
        fitted->both_ms[i] = sum_of(fit, {1, cpu, 1, gpu_part});
    }
}

}  // namespace

fitted_game fit_game(const held_frames &held, const environment &on, const variation &varies) {
    fitted_game fitted;
    fit_problem problem;
    problem.held = &held;
    problem.varies = &varies;
    problem.on = on;
    if (held.period_us > 0)
        problem.on.panel_hz = 1e6 / held.period_us;
    problem.period_us = 1e6 / problem.on.panel_hz;
    problem.like.name = held.game;
    problem.like.limit_fps = limit_of(held, problem.period_us);
    fitted.error = fit_observe(&problem);
    if (!fitted.error.empty())
        return fitted;
    problem.plays = std::clamp(frames_simulated / held.frames.size(), size_t(1), plays_most);
    std::vector<fit_start> starts[2];
    for (const bool serial : {false, true}) {
        problem.like.serial = serial;
        starts[serial] = starts_of(problem);
    }
    problem.like.serial = starts[1][0].off < starts[0][0].off;
    const figure_roots &nearest = starts[problem.like.serial][0].at;
    fit_take_trials(&problem, fit_trials(problem, nearest, 0));
    shape_fit fits[2];
    for (const bool serial : {false, true}) {
        problem.like.serial = serial;
        fits[serial] = fit_shape_again(&problem, starts[serial]);
    }
    const bool serial = fits[1].chi_squared < fits[0].chi_squared;
    problem.like.serial = serial;
    shape_fit &best = fits[serial];
    widen(&best, problem);
    fitted.game = fit_game_of(problem, best.at);
    for (size_t i = 0; i < fitted_count; ++i)
        fitted.figures[i] = figure_of(best, i);
    tell_times(best, problem, &fitted);
    fitted.other_shape = fits[!serial].chi_squared - best.chi_squared;
    fitted.panel_hz = problem.on.panel_hz;
    fitted.rates = rates_of(problem, best.at);
    return fitted;
}
