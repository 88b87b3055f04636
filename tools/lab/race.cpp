#include "tools/lab/race.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "tools/lab/summary.h"

namespace {

constexpr size_t games_at_once = 4;  // before a look whether the rest is worth a play
constexpr size_t kept_of = 5;        // one in so many goes on to the next round
constexpr size_t kept_least = 4;
constexpr size_t compared_least = 16;        // sets that a further one is held against
constexpr size_t hold_outs = 4;              // sets that are tried on seeds of their own, at most
constexpr uint64_t hold_out_from = 1000000;  // behind all seeds of a search

using free_runs = std::vector<std::vector<run_result>>;

// The runs without caps: once a place and stretch of seeds, whatever the set.
const free_runs &free_runs_of(const lab_setup &setup, const std::string &place) {
    static std::map<std::string, free_runs> known;
    std::string key = place + " " + std::to_string(setup.seed) + " " + std::to_string(setup.seeds);
    for (const game_work &game : setup.games)
        key += " " + game.name;
    const auto found = known.find(key);
    return found != known.end() ? found->second
                                : known.emplace(key, lab_run_free(setup)).first->second;
}

bool is_judged(const lab_search &search, size_t game) {
    return search.options.all_games || search.setup.games[game].told;
}

std::vector<double> each_of(const std::vector<set_play> &plays, double set_play::*which) {
    std::vector<double> values(plays.size());
    std::transform(plays.begin(), plays.end(), values.begin(),
                   [which](const set_play &play) { return play.*which; });
    return values;
}

double mean_changes(const std::vector<set_play> &plays) {
    double sum = 0;
    for (const set_play &play : plays)
        sum += play.changes;
    return plays.empty() ? 0 : sum / static_cast<double>(plays.size());
}

// Whether each play of a game that is judged breaks the bound.
bool is_broken(const lab_search &search, const tried_set &tried, size_t game) {
    if (!is_judged(search, game))
        return false;
    for (const std::vector<set_play> &plays : tried.games[game].plays)
        if (!plays.empty() && std::all_of(plays.begin(), plays.end(), [&](const set_play &play) {
                return play.lost > search.options.max_loss;
            }))
            return true;
    return false;
}

// Plays some games of a set in one place, with the seeds from `from` on. False where its daemon
// could not.
bool play_games(const lab_search &search, const search_place &place, size_t place_index,
                const std::vector<size_t> &games, size_t from, size_t seeds, tried_set *tried) {
    lab_setup setup = search.setup;
    setup.on = place.on;
    setup.figures = place.figures;
    setup.seed += from;
    setup.seeds = static_cast<int>(seeds - from);
    setup.games.clear();
    for (const size_t game : games)
        setup.games.push_back(search.setup.games[game]);
    for (const auto &[name, value] : tried->set) {
        tried->error = setting_apply(&setup.figures, name, value);
        if (!tried->error.empty())
            return false;
    }
    tried->error = settings_check(setup.figures);
    if (tried->error.empty())
        tried->error = device_model_check(place.on.device, setup.figures);
    if (!tried->error.empty())
        return false;
    const std::vector<game_result> results = lab_run(setup, free_runs_of(setup, place.name));
    for (size_t i = 0; i < results.size(); ++i) {
        if (!results[i].error.empty()) {
            tried->error = results[i].game + ": " + results[i].error;
            return false;
        }
        for (const play_result &play : results[i].plays) {
            tried->games[games[i]].plays[place_index].push_back(
                {lab_fps_lost(play), lab_energy_saved(play),
                 play.capped.changes / play.capped.seconds * 60});
            tried->caps_left |= play.capped.caps_left;
        }
    }
    return true;
}

// The seeds that every game was played with in every place.
size_t whole_seeds(const tried_set &tried) {
    size_t least = SIZE_MAX;
    for (const tried_game &game : tried.games)
        for (const std::vector<set_play> &plays : game.plays)
            least = std::min(least, plays.size());
    return tried.games.empty() ? 0 : least;
}

// The mean of all games and places, seed by seed.
std::vector<double> mean_by_seed(const tried_set &tried, size_t seeds, double set_play::*which) {
    std::vector<double> means(seeds);
    size_t count = 0;
    for (const tried_game &game : tried.games)
        for (const std::vector<set_play> &plays : game.plays) {
            ++count;
            for (size_t i = 0; i < seeds && i < plays.size(); ++i)
                means[i] += plays[i].*which;
        }
    for (double &mean : means)
        mean /= static_cast<double>(count);
    return means;
}

std::string short_figure(double value) {
    char text[32];
    snprintf(text, sizeof(text), "%.2f", value);
    return text;
}

// What a set saves in the first plays of those games and places that another was played in.
double saved_like(const tried_set &tried, const tried_set &other) {
    double sum = 0;
    for (size_t game = 0; game < tried.games.size(); ++game)
        for (size_t place = 0; place < tried.games[game].plays.size(); ++place) {
            const size_t seeds = other.games[game].plays[place].size();
            const std::vector<set_play> &plays = tried.games[game].plays[place];
            for (size_t i = 0; i < seeds && i < plays.size(); ++i)
                sum += plays[i].saved;
        }
    return sum;
}

// Whether a set that has some of its plays saves no less in them than half of the sets that have
// all: no more than one in kept_of goes on.
bool saves_like_half(const tried_set &tried, const std::vector<const tried_set *> &whole) {
    if (whole.size() < compared_least)
        return true;
    const double own = saved_like(tried, tried);
    const auto more = std::count_if(whole.begin(), whole.end(), [&](const tried_set *each) {
        return saved_like(*each, tried) > own;
    });
    return static_cast<size_t>(more) * 2 <= whole.size();
}

// The seeds of a held-out stretch in which no game that is judged lost more than the bound.
void judge_held_out(const lab_search &search, const tried_set &tried, held_out *verdict) {
    std::vector<bool> within(held_out_seeds, true);
    for (size_t game = 0; game < tried.games.size(); ++game)
        for (const std::vector<set_play> &plays : tried.games[game].plays)
            for (size_t i = 0; i < plays.size(); ++i) {
                if (!is_judged(search, game))
                    continue;
                if (plays[i].lost > search.options.max_loss)
                    within[i] = false;
            }
    verdict->within = static_cast<size_t>(std::count(within.begin(), within.end(), true));
}

}  // namespace

void race_try(const lab_search &search, size_t seeds, tried_set *tried, size_t *plays,
              const std::function<bool(const tried_set &tried)> &is_worth_more) {
    if (tried->games.empty())
        for (const game_work &game : search.setup.games)
            tried->games.push_back(
                {game.name, std::vector<std::vector<set_play>>(search.places.size())});
    for (size_t place = 0; place < search.places.size(); ++place)
        for (size_t game = 0; game < tried->games.size();) {
            // Those that lack the same seeds are played together.
            const size_t from = tried->games[game].plays[place].size();
            std::vector<size_t> together;
            for (; game < tried->games.size() && together.size() < games_at_once &&
                   tried->games[game].plays[place].size() == from;
                 ++game)
                together.push_back(game);
            if (from < seeds) {
                if (!play_games(search, search.places[place], place, together, from, seeds, tried))
                    return;
                *plays += together.size() * (seeds - from);
            }
            for (const size_t each : together)
                if (is_broken(search, *tried, each))
                    return;
            if (!is_worth_more(*tried))
                return;
        }
}

set_verdict race_judge(const lab_search &search, const tried_set &tried) {
    set_verdict verdict;
    verdict.tried = &tried;
    if (!tried.error.empty()) {
        verdict.broken_by = tried.error;
        return verdict;
    }
    verdict.seeds = whole_seeds(tried);
    verdict.worst_lost = -HUGE_VAL;
    for (size_t game = 0; game < tried.games.size(); ++game)
        for (size_t place = 0; place < search.places.size(); ++place) {
            const std::vector<set_play> &plays = tried.games[game].plays[place];
            if (plays.empty() || !is_judged(search, game))
                continue;
            const std::vector<double> lost = each_of(plays, &set_play::lost);
            const double bound = upper_bound_of(lost);
            const double most = *std::max_element(lost.begin(), lost.end());
            if (most > verdict.worst_play) {
                verdict.worst_play = most;
                verdict.worst_play_game = tried.games[game].name;
            }
            verdict.worst_mean = std::max(verdict.worst_mean, estimate_of(lost).mean);
            if (bound > verdict.worst_lost) {
                verdict.worst_lost = bound;
                verdict.worst_game = tried.games[game].name;
                verdict.worst_place = search.places[place].name;
            }
            const double changes = mean_changes(plays);
            verdict.most_changes = std::max(verdict.most_changes, changes);
        }
    if (verdict.seeds > 0) {
        verdict.saved = estimate_of(mean_by_seed(tried, verdict.seeds, &set_play::saved));
        verdict.lost = estimate_of(mean_by_seed(tried, verdict.seeds, &set_play::lost)).mean;
    }
    if (verdict.worst_lost > search.options.max_loss)
        verdict.broken_by = verdict.worst_game + " may lose " + short_figure(verdict.worst_lost) +
                            (search.places.size() > 1 ? " at " + verdict.worst_place : "");
    else if (verdict.worst_play > search.options.max_loss)
        verdict.broken_by =
            verdict.worst_play_game + " lost " + short_figure(verdict.worst_play) + " in a play";
    else if (search.options.max_changes > 0 && verdict.most_changes > search.options.max_changes)
        verdict.broken_by = "caps move " + short_figure(verdict.most_changes) + " times a minute";
    else if (tried.caps_left)
        verdict.broken_by = "a cap is left behind after a game";
    verdict.holds = verdict.seeds > 1 && verdict.broken_by.empty();
    return verdict;
}

void race_run(const lab_search &search, std::vector<tried_set> *sets, size_t *plays,
              const std::function<bool(const tried_set &tried, size_t before)> &tell) {
    std::vector<size_t> running(sets->size());
    for (size_t i = 0; i < running.size(); ++i)
        running[i] = i;
    for (const size_t seeds : race_rounds) {
        std::vector<const tried_set *> whole;
        for (const size_t i : running) {
            tried_set *tried = &(*sets)[i];
            const size_t before = *plays;
            race_try(search, seeds, tried, plays, [&](const tried_set &each) {
                return seeds > race_rounds[0] || i == 0 || saves_like_half(each, whole);
            });
            if (whole_seeds(*tried) >= seeds)
                whole.push_back(tried);
            if (*plays > before || !tried->error.empty())
                if (!tell(*tried, seeds))
                    return;
        }
        // On: those of which no game breaks the bound with all its seeds; the ones of which none
        // breaks it in the mean first, then by what they save. The daemon's own figures always.
        std::vector<std::tuple<bool, double, size_t>> order;
        for (const size_t i : running) {
            const tried_set &tried = (*sets)[i];
            bool broken = !tried.error.empty() || whole_seeds(tried) < seeds;
            for (size_t game = 0; !broken && game < tried.games.size(); ++game)
                broken = is_broken(search, tried, game);
            const set_verdict verdict = race_judge(search, tried);
            broken |=
                search.options.max_changes > 0 && verdict.most_changes > search.options.max_changes;
            if (!broken && i != 0)
                order.emplace_back(verdict.worst_mean > search.options.max_loss,
                                   -verdict.saved.mean, i);
        }
        std::sort(order.begin(), order.end());
        order.resize(std::min(order.size(), std::max(running.size() / kept_of, kept_least)));
        running.assign(1, 0);
        for (const auto &[breaks, saved, i] : order)
            running.push_back(i);
    }
}

std::vector<set_verdict> race_judge_all(const lab_search &search,
                                        const std::vector<tried_set> &sets) {
    std::vector<set_verdict> verdicts(sets.size());
    std::transform(sets.begin(), sets.end(), verdicts.begin(),
                   [&search](const tried_set &tried) { return race_judge(search, tried); });
    return verdicts;
}

bool play_all(const tried_set &) {
    return true;
}

void race_hold_out(const lab_search &search, const std::vector<tried_set> &sets,
                   search_result *result) {
    std::vector<set_verdict> holding = race_judge_all(search, sets);
    std::erase_if(holding, [](const set_verdict &each) {
        return !each.holds || each.seeds < race_rounds[std::size(race_rounds) - 1];
    });
    std::stable_sort(holding.begin(), holding.end(),
                     [](const auto &a, const auto &b) { return a.saved.mean > b.saved.mean; });
    for (size_t i = 0; i < holding.size() && i < hold_outs && result->best == nullptr; ++i) {
        // Each has seeds of its own: a choice among several on the same ones would be one more
        // search.
        lab_search fresh = search;
        fresh.setup.seed += hold_out_from * (i + 1);
        fresh.options.max_loss = INFINITY;  // all games are played
        tried_set chosen, own;
        chosen.set = holding[i].tried->set;
        own.set = sets[0].set;
        for (tried_set *each : {&chosen, &own})
            race_try(fresh, held_out_seeds, each, &result->plays, play_all);
        fresh.options.max_loss = search.options.max_loss;
        const set_verdict verdict = race_judge(fresh, chosen);
        const std::vector<double> saved = mean_by_seed(chosen, held_out_seeds, &set_play::saved);
        const std::vector<double> saved_default =
            mean_by_seed(own, held_out_seeds, &set_play::saved);
        result->chosen = holding[i].tried;
        result->verdict = {};
        result->verdict.first_seed = fresh.setup.seed;
        result->verdict.seeds = held_out_seeds;
        result->verdict.saved = estimate_of(saved);
        result->verdict.saved_default = estimate_of(saved_default);
        result->verdict.gained = estimate_of(paired_difference(saved, saved_default));
        judge_held_out(fresh, chosen, &result->verdict);
        result->verdict.holds = verdict.holds;
        result->verdict.broken_by = verdict.broken_by;
        result->verdict.worst_game = verdict.worst_play_game;
        result->verdict.worst_lost = verdict.worst_play;
        if (verdict.holds)
            result->best = holding[i].tried;
    }
}

set_change compare_sets(const tried_set &moved, const tried_set &own) {
    set_change change;
    change.set = moved.set;
    change.error = moved.error;
    const size_t seeds = std::min(whole_seeds(moved), whole_seeds(own));
    if (!change.error.empty() || seeds == 0)
        return change;
    const auto mean = [&](const tried_set &tried, double set_play::*which) {
        return mean_by_seed(tried, seeds, which);
    };
    change.saved = estimate_of(mean(moved, &set_play::saved)).mean;
    change.lost = estimate_of(mean(moved, &set_play::lost)).mean;
    change.changes = estimate_of(mean(moved, &set_play::changes)).mean;
    change.saved_change =
        estimate_of(paired_difference(mean(moved, &set_play::saved), mean(own, &set_play::saved)));
    change.lost_change =
        estimate_of(paired_difference(mean(moved, &set_play::lost), mean(own, &set_play::lost)));
    return change;
}
