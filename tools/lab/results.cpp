#include "tools/lab/results.h"

#include <stdio.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>

#include "tools/base/shown.h"
#include "tools/base/terminal.h"

namespace {

constexpr int name_width = 17;
constexpr int column_width = 7;

// Ways of ending that differ by no more than this are one, for people.
constexpr double way_lost = 0.1;  // frames per second
constexpr double way_saved = 0.01;

// A row's figures: what a game came to, and what other figures of the analyser made of it.
struct table_row {
    std::string name;
    const char *mark;
    game_summary summary;
    game_summary before;
    game_change change;
};

struct column {
    const char *group;  // those of one stand beside each other
    const char *title;
    int digits;  // behind the point
    bool percent;
    bool everywhere;  // also where there is no room for all
    double (*of)(const table_row &row);
};

// In the order of the tables. Shares are taken as percentages.
constexpr column result_columns[] = {
    {"fps", "free", 2, false, true, [](const table_row &of) { return of.summary.free.fps; }},
    {"fps", "capped", 2, false, true, [](const table_row &of) { return of.summary.capped.fps; }},
    {"lost", "mean", 2, false, true, [](const table_row &of) { return of.summary.lost.mean; }},
    {"lost", "from", 2, false, true, [](const table_row &of) { return of.summary.lost.low; }},
    {"lost", "to", 2, false, true, [](const table_row &of) { return of.summary.lost.high; }},
    {"lost", "worst", 2, false, true, [](const table_row &of) { return of.summary.lost_worst; }},
    {"energy saved", "mean", 1, true, true,
     [](const table_row &of) { return of.summary.saved.mean; }},
    {"energy saved", "from", 1, true, true,
     [](const table_row &of) { return of.summary.saved.low; }},
    {"energy saved", "to", 1, true, true,
     [](const table_row &of) { return of.summary.saved.high; }},
    {"mW", "free", 0, false, false, [](const table_row &of) { return of.summary.free_mw; }},
    {"mW", "capped", 0, false, false, [](const table_row &of) { return of.summary.capped_mw; }},
    {"late", "free", 1, true, false, [](const table_row &of) { return of.summary.free.missed; }},
    {"late", "capped", 1, true, false,
     [](const table_row &of) { return of.summary.capped.missed; }},
    {"1% low", "free", 1, false, false,
     [](const table_row &of) { return of.summary.free.low_fps; }},
    {"1% low", "capped", 1, false, false,
     [](const table_row &of) { return of.summary.capped.low_fps; }},
    {"caps cut by", "big", 0, true, false,
     [](const table_row &of) { return of.summary.capped.cut[resource_big]; }},
    {"caps cut by", "little", 0, true, false,
     [](const table_row &of) { return of.summary.capped.cut[resource_little]; }},
    {"caps cut by", "gpu", 0, true, false,
     [](const table_row &of) { return of.summary.capped.cut[resource_gpu]; }},
    {"a min", "moved", 1, false, false,
     [](const table_row &of) { return of.summary.changes_a_minute; }},
    {"a min", "back", 1, false, false,
     [](const table_row &of) { return of.summary.reversals_a_minute; }},
    {"settle", "s", 0, false, false,
     [](const table_row &of) { return of.summary.capped.settle_s; }},
};

constexpr column comparison_columns[] = {
    {"lost", "before", 2, false, true, [](const table_row &of) { return of.before.lost.mean; }},
    {"lost", "after", 2, false, true, [](const table_row &of) { return of.summary.lost.mean; }},
    {"lost", "change", 2, false, true, [](const table_row &of) { return of.change.lost.mean; }},
    {"lost", "from", 2, false, true, [](const table_row &of) { return of.change.lost.low; }},
    {"lost", "to", 2, false, true, [](const table_row &of) { return of.change.lost.high; }},
    {"energy saved", "before", 1, true, true,
     [](const table_row &of) { return of.before.saved.mean; }},
    {"energy saved", "after", 1, true, true,
     [](const table_row &of) { return of.summary.saved.mean; }},
    {"energy saved", "change", 1, true, true,
     [](const table_row &of) { return of.change.saved.mean; }},
    {"energy saved", "from", 1, true, true,
     [](const table_row &of) { return of.change.saved.low; }},
    {"energy saved", "to", 1, true, false,
     [](const table_row &of) { return of.change.saved.high; }},
    {"a min moved", "before", 1, false, false,
     [](const table_row &of) { return of.before.changes_a_minute; }},
    {"a min moved", "after", 1, false, false,
     [](const table_row &of) { return of.summary.changes_a_minute; }},
};

using column_list = std::vector<const column *>;

template <size_t count>
column_list columns_for(const column (&columns)[count]) {
    const size_t terminal = terminal_columns();
    const bool all = terminal == 0 || terminal >= name_width + column_width * count;
    column_list chosen;
    for (const column &each : columns)
        if (all || each.everywhere)
            chosen.push_back(&each);
    return chosen;
}

void print_heading(const column_list &chosen) {
    std::string groups(name_width, ' ');
    std::string titles = groups;
    for (size_t i = 0; i < chosen.size(); ++i) {
        const std::string group = chosen[i]->group;
        if (i == 0 || group != chosen[i - 1]->group) {
            groups.resize(titles.size(), ' ');
            groups += "  " + group;
        }
        char title[16];
        snprintf(title, sizeof(title), "%*s", column_width, chosen[i]->title);
        titles += title;
    }
    printf("%s\n%s\n", groups.c_str(), titles.c_str());
}

void print_row(const table_row &row, const column_list &chosen) {
    printf("%s%-*.*s", row.mark, name_width - 2, name_width - 2, shown(row.name).c_str());
    for (const column *each : chosen) {
        // A figure that is nearly 0 is 0, without a sign.
        double value = each->of(row) * (each->percent ? 100 : 1);
        value = std::fabs(value) < 0.5 * std::pow(10, -each->digits) ? 0 : value;
        if (!std::isfinite(value))
            printf("%*s", column_width, "?");
        else if (each->percent)
            printf("%*.*f%%", column_width - 1, each->digits, value);
        else
            printf("%*.*f", column_width, each->digits, value);
    }
    printf("\n");
}

void print_more_columns(size_t shown_columns, size_t all) {
    if (shown_columns < all)
        print_folded("A wider terminal, or a file, has room for " +
                         std::to_string(all - shown_columns) + " more columns.",
                     0);
}

// A game's name, with a question mark where the data cannot tell its work.
std::string name_of(const game_summary &summary) {
    return summary.told ? summary.game : summary.game + " ?";
}

// Whether it makes a difference in which way a play ends.
bool ways_differ(const std::vector<play_outcome> &outcomes) {
    return std::any_of(outcomes.begin(), outcomes.end(), [&](const play_outcome &each) {
        return std::fabs(each.fps_lost - outcomes[0].fps_lost) > way_lost ||
               std::fabs(each.energy_saved - outcomes[0].energy_saved) > way_saved;
    });
}

void print_outcomes(const game_summary &summary) {
    if (!ways_differ(summary.outcomes))
        return;
    std::string ways =
        summary.game + " ends in " + std::to_string(summary.outcomes.size()) + " ways:";
    for (const play_outcome &each : summary.outcomes) {
        char way[96];
        snprintf(way, sizeof(way), " in %zu of %zu plays %s, %.2f lost, %.1f %% saved;", each.plays,
                 summary.seeds,
                 each.learned_fps > 0
                     ? ("held to " + std::to_string(each.learned_fps) + " fps").c_str()
                     : "never held",
                 each.fps_lost, each.energy_saved * 100);
        ways += way;
    }
    ways.back() = '.';
    print_folded(shown(ways), 2);
}

}  // namespace

void print_results(const std::vector<game_result> &results, uint64_t first_seed, bool with_base) {
    const column_list chosen = columns_for(result_columns);
    print_heading(chosen);
    std::vector<game_summary> summaries;
    double worst = 0;
    for (const game_result &result : results) {
        summaries.push_back(summarise_game(result, first_seed));
        worst = std::max(worst, summaries.back().lost.mean);
    }
    bool left = false;
    for (const game_summary &each : summaries) {
        const bool marked = each.lost.mean >= 1 || (each.lost.mean == worst && worst > 0.05);
        const char *mark = marked ? "> " : may_be_nothing(each.lost) ? "~ " : "  ";
        print_row({name_of(each), mark, each, {}, {}}, chosen);
        if (each.caps_left)
            printf("  %s: a cap was left behind after the game\n", shown(each.game).c_str());
        left |= each.caps_left;
    }
    print_row({"mean", "  ", summarise_games(results, first_seed), {}, {}}, chosen);
    for (const game_summary &each : summaries)
        print_outcomes(each);
    const size_t seeds = summaries[0].seeds;
    print_folded(
        "> loses most, or a frame per second and more; ~ what it loses may as well be nothing; "
        "? its work is not known, it held the panel's rate wherever it was measured.",
        0);
    print_folded((seeds > 1 ? "From and to: where the mean of many more plays lies in 95 of 100 "
                              "cases, by the " +
                                  std::to_string(seeds) + " played here."
                            : std::string("One play of each tells nothing of others: --seeds 8.")) +
                     " Energy is a model's result, a share of that of the same frames without "
                     "caps" +
                     (with_base ? ", the rest of the device counted."
                                : "; the rest of the device is not counted: --base-mw."),
                 0);
    print_more_columns(chosen.size(), std::size(result_columns));
    if (!left)
        printf("No cap was left behind after a game.\n");
}

void print_comparison(const std::vector<game_result> &before,
                      const std::vector<game_result> &after) {
    const column_list chosen = columns_for(comparison_columns);
    print_heading(chosen);
    for (size_t i = 0; i < after.size(); ++i) {
        table_row row = {after[i].game, "  ", summarise_game(after[i], 0),
                         summarise_game(before[i], 0), compare_game(before[i], after[i])};
        row.name = name_of(row.summary);
        row.mark =
            may_be_nothing(row.change.lost) && may_be_nothing(row.change.saved) ? "~ " : "  ";
        print_row(row, chosen);
    }
    print_row({"mean", "  ", summarise_games(after, 0), summarise_games(before, 0),
               compare_games(before, after)},
              chosen);
    print_folded(
        "Before: with the daemon's own figures. The change is of pairs of plays with the same "
        "work, over " +
            std::to_string(after[0].plays.size()) +
            " seeds, and lies from and to in 95 of 100 cases; ~ where it may as well be nothing.",
        0);
    print_more_columns(chosen.size(), std::size(comparison_columns));
}
