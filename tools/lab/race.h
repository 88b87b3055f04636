// The race of sets: which are played on how many seeds, and how each comes out.
#pragma once

#include <functional>

#include "tools/lab/search.h"

// The seeds of each round, and of the seeds that nobody searched on.
constexpr size_t race_rounds[] = {2, 4, 8, 16};
constexpr size_t held_out_seeds = 10;

// Plays a set's games with the seeds of the search up to `seeds`, those that it lacks; not those
// behind a game that breaks the bound with each of its seeds, nor any more once the set is not
// worth it. Plays are counted on `*plays`.
void race_try(const lab_search &search, size_t seeds, tried_set *tried, size_t *plays,
              const std::function<bool(const tried_set &tried)> &is_worth_more);

// Every set is worth all plays.
bool play_all(const tried_set &tried);

// How a set came out, by the seeds that all of its games were played with.
set_verdict race_judge(const lab_search &search, const tried_set &tried);
std::vector<set_verdict> race_judge_all(const lab_search &search,
                                        const std::vector<tried_set> &sets);

// Races sets: each round plays those that may still win on more seeds. `tell` hears of every set
// that was played on, with the number of its seeds before.
void race_run(const lab_search &search, std::vector<tried_set> *sets, size_t *plays,
              const std::function<bool(const tried_set &tried, size_t before)> &tell);

// Plays the sets that hold, the one that saves most first, on seeds of its own, until one holds
// there too; the first of `sets` is the daemon's own figures.
void race_hold_out(const lab_search &search, const std::vector<tried_set> &sets,
                   search_result *result);

// What another set changes, in pairs of the same work; means of all games and places.
struct set_change {
    setting_list set;
    std::string error;
    double saved = 0;
    double lost = 0;
    double changes = 0;  // of caps, a minute
    estimate saved_change;
    estimate lost_change;
};
set_change compare_sets(const tried_set &moved, const tried_set &own);
