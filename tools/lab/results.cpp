#include "tools/lab/results.h"

#include <stdio.h>

#include <algorithm>
#include <string>

#include "tools/base/shown.h"
#include "tools/base/terminal.h"

namespace {

constexpr int name_width = 17;
constexpr int column_width = 7;

struct column {
    const char *group;  // those of one stand beside each other
    const char *title;
    int digits;  // behind the point
    bool percent;
    bool everywhere;  // also where there is no room for all
    double (*of)(const game_result &result);
};

// In the order of the table. Shares are taken as percentages.
constexpr column columns[] = {
    {"fps", "free", 2, false, true, [](const game_result &of) { return of.free.fps; }},
    {"fps", "capped", 2, false, true, [](const game_result &of) { return of.capped.fps; }},
    {"late", "free", 1, true, false, [](const game_result &of) { return of.free.missed; }},
    {"late", "capped", 1, true, true, [](const game_result &of) { return of.capped.missed; }},
    {"1% low", "free", 2, false, false, [](const game_result &of) { return of.free.low_fps; }},
    {"1% low", "capped", 2, false, true, [](const game_result &of) { return of.capped.low_fps; }},
    {"energy", "saved", 1, true, true, lab_energy_saved},
    {"caps cut by", "big", 1, true, true,
     [](const game_result &of) { return of.capped.cut[resource_big]; }},
    {"caps cut by", "little", 1, true, true,
     [](const game_result &of) { return of.capped.cut[resource_little]; }},
    {"caps cut by", "gpu", 1, true, true,
     [](const game_result &of) { return of.capped.cut[resource_gpu]; }},
    {"a min", "moved", 1, false, true,
     [](const game_result &of) { return of.capped.changes / of.minutes; }},
    {"a min", "back", 1, false, false,
     [](const game_result &of) { return of.capped.reversals / of.minutes; }},
    {"settle", "s", 0, false, false, [](const game_result &of) { return of.capped.settle_s; }},
};

std::vector<const column *> columns_for(size_t terminal) {
    const bool all = terminal == 0 || terminal >= name_width + column_width * std::size(columns);
    std::vector<const column *> chosen;
    for (const column &each : columns)
        if (all || each.everywhere)
            chosen.push_back(&each);
    return chosen;
}

void print_heading(const std::vector<const column *> &chosen) {
    std::string groups(name_width, ' ');
    std::string titles = groups;
    for (size_t i = 0; i < chosen.size(); ++i) {
        const std::string group = chosen[i]->group;
        if (i == 0 || group != chosen[i - 1]->group) {
            groups.resize(titles.size(), ' ');
            groups += " " + group;
        }
        char title[16];
        snprintf(title, sizeof(title), "%*s", column_width, chosen[i]->title);
        titles += title;
    }
    groups.resize(titles.size(), ' ');
    printf("%s\n%s\n", groups.c_str(), titles.c_str());
}

void print_row(const char *mark, const std::string &name, const std::vector<const column *> &chosen,
               const std::vector<game_result> &over) {
    printf("%s%-*.*s", mark, name_width - 2, name_width - 2, shown(name).c_str());
    for (const column *each : chosen) {
        double mean = 0;
        for (const game_result &result : over)
            mean += each->of(result) / static_cast<double>(over.size());
        if (each->percent)
            printf("%*.*f%%", column_width - 1, each->digits, mean * 100);
        else
            printf("%*.*f", column_width, each->digits, mean);
    }
    printf("\n");
}

}  // namespace

void print_results(const std::vector<game_result> &results) {
    const std::vector<const column *> chosen = columns_for(terminal_columns());
    print_heading(chosen);
    double worst = 0;
    for (const game_result &result : results)
        worst = std::max(worst, lab_fps_lost(result));
    bool left = false;
    for (const game_result &result : results) {
        const double lost = lab_fps_lost(result);
        const bool marked = lost >= 1 || (lost == worst && worst > 0.05);
        print_row(marked ? "> " : "  ", result.game, chosen, {result});
        if (result.caps_left)
            printf("  %s: a cap was left behind after the game\n", shown(result.game).c_str());
        left |= result.caps_left;
    }
    print_row("  ", "mean", chosen, results);
    print_folded(
        "> loses most, or a frame per second and more. Energy is a model's result, a frame's, as a "
        "share of the same game without caps.",
        0);
    if (chosen.size() < std::size(columns))
        print_folded("A wider terminal, or a file, has room for " +
                         std::to_string(std::size(columns) - chosen.size()) + " more columns.",
                     0);
    if (!left)
        printf("No cap was left behind after a game.\n");
}
