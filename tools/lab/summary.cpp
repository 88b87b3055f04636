#include "tools/lab/summary.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace {

constexpr double shown_least = 0.0005;  // what no table here shows as more than nothing

run_result mean_of(const std::vector<play_result> &plays, run_result play_result::*which) {
    run_result mean;
    const double count = static_cast<double>(plays.size());
    for (const play_result &play : plays) {
        const run_result &run = play.*which;
        mean.fps += run.fps / count;
        mean.low_fps += run.low_fps / count;
        mean.missed += run.missed / count;
        mean.energy_mj += run.energy_mj / count;
        mean.seconds += run.seconds / count;
        mean.settle_s += run.settle_s / count;
        mean.frames += run.frames / count;
        mean.warmest_c = std::max(mean.warmest_c, run.warmest_c);
        for (int i = 0; i < resource_count; ++i)
            mean.cut[i] += run.cut[i] / count;
    }
    return mean;
}

double mean_over(const std::vector<play_result> &plays, double (*of)(const play_result &play)) {
    double sum = 0;
    for (const play_result &play : plays)
        sum += of(play);
    return sum / static_cast<double>(plays.size());
}

double changes_a_minute(const play_result &play) {
    return play.capped.changes / play.capped.seconds * 60;
}

double reversals_a_minute(const play_result &play) {
    return play.capped.reversals / play.capped.seconds * 60;
}

std::vector<play_outcome> outcomes_of(const std::vector<play_result> &plays) {
    std::map<int, std::vector<play_result>> ways;
    for (const play_result &play : plays)
        ways[play.capped.learned_fps].push_back(play);
    std::vector<play_outcome> outcomes;
    outcomes.reserve(ways.size());
    for (const auto &[learned_fps, of_way] : ways)
        outcomes.push_back({learned_fps, of_way.size(), mean_over(of_way, lab_fps_lost),
                            mean_over(of_way, lab_energy_saved)});
    std::stable_sort(outcomes.begin(), outcomes.end(),
                     [](const auto &a, const auto &b) { return a.plays > b.plays; });
    return outcomes;
}

// The mean over the games, play by play.
std::vector<double> mean_of_games(const std::vector<game_result> &results,
                                  double (*of)(const play_result &play)) {
    std::vector<double> means(results[0].plays.size());
    for (const game_result &result : results)
        for (size_t i = 0; i < means.size(); ++i)
            means[i] += of(result.plays[i]) / static_cast<double>(results.size());
    return means;
}

}  // namespace

game_summary summarise_game(const game_result &result, uint64_t first_seed) {
    game_summary summary;
    summary.game = result.game;
    summary.told = result.told;
    summary.seeds = result.plays.size();
    summary.free = mean_of(result.plays, &play_result::free);
    summary.capped = mean_of(result.plays, &play_result::capped);
    summary.free_mw = summary.free.energy_mj / summary.free.seconds;
    summary.capped_mw = summary.capped.energy_mj / summary.capped.seconds;
    summary.changes_a_minute = mean_over(result.plays, changes_a_minute);
    summary.reversals_a_minute = mean_over(result.plays, reversals_a_minute);
    const std::vector<double> lost = lab_each(result, lab_fps_lost);
    summary.lost = estimate_of(lost);
    const auto worst = std::max_element(lost.begin(), lost.end());
    summary.lost_worst = *worst;
    summary.worst_seed = first_seed + static_cast<uint64_t>(worst - lost.begin());
    summary.saved = estimate_of(lab_each(result, lab_energy_saved));
    summary.outcomes = outcomes_of(result.plays);
    for (const play_result &play : result.plays)
        summary.caps_left |= play.capped.caps_left;
    return summary;
}

game_summary summarise_games(const std::vector<game_result> &results, uint64_t first_seed) {
    // A game whose plays are those of all.
    game_result all;
    for (const game_result &result : results)
        all.plays.insert(all.plays.end(), result.plays.begin(), result.plays.end());
    game_summary summary = summarise_game(all, first_seed);
    summary.seeds = results[0].plays.size();
    summary.lost = estimate_of(mean_of_games(results, lab_fps_lost));
    summary.saved = estimate_of(mean_of_games(results, lab_energy_saved));
    for (const game_result &result : results) {
        const game_summary game = summarise_game(result, first_seed);
        if (summary.game.empty() || game.lost_worst == summary.lost_worst) {
            summary.game = game.game;
            summary.worst_seed = game.worst_seed;
        }
    }
    return summary;
}

bool may_be_nothing(const estimate &figure) {
    return std::fabs(figure.mean) < shown_least || (figure.low <= 0 && figure.high >= 0);
}

game_change compare_game(const game_result &before, const game_result &after) {
    return compare_games({before}, {after});
}

game_change compare_games(const std::vector<game_result> &before,
                          const std::vector<game_result> &after) {
    const auto change = [&](double (*of)(const play_result &play)) {
        return estimate_of(paired_difference(mean_of_games(after, of), mean_of_games(before, of)));
    };
    return {change(lab_fps_lost), change(lab_energy_saved)};
}
