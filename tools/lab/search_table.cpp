#include "tools/lab/search_table.h"

#include <stdio.h>

#include "tools/base/shown.h"
#include "tools/base/terminal.h"

namespace {

constexpr size_t nearest_shown = 3;

void print_set(const set_verdict &each) {
    printf("%6.1f %% (%5.1f to %5.1f)  %6.2f  %8.2f  %-16s %5.1f  %5zu  %s\n",
           each.saved.mean * 100, each.saved.low * 100, each.saved.high * 100, each.lost,
           each.worst_lost, shown(each.worst_game).c_str(), each.most_changes, each.seeds,
           shown(set_text(each.tried->set)).c_str());
}

void print_verdict(const lab_search &search, const search_result &found) {
    const held_out &verdict = found.verdict;
    char text[512];
    snprintf(text, sizeof(text),
             "On %zu seeds from %llu on, which nobody searched on, it %s%s: in %zu of %zu no game "
             "loses more than %.2f, at most %s %.2f in a play; saves %.1f %% (%.1f to %.1f), the "
             "daemon's own figures %.1f %%, %+.1f points (%+.1f to %+.1f).",
             verdict.seeds, static_cast<unsigned long long>(verdict.first_seed),
             verdict.holds ? "holds" : "does not hold, ", verdict.broken_by.c_str(), verdict.within,
             verdict.seeds, search.options.max_loss, verdict.worst_game.c_str(), verdict.worst_lost,
             verdict.saved.mean * 100, verdict.saved.low * 100, verdict.saved.high * 100,
             verdict.saved_default.mean * 100, verdict.gained.mean * 100, verdict.gained.low * 100,
             verdict.gained.high * 100);
    print_folded(shown(text), 0);
    if (verdict.holds && verdict.gained.low <= 0)
        print_folded(
            "It may as well save nothing more than the daemon's own figures: stay with "
            "those.",
            0);
}

}  // namespace

std::string set_text(const setting_list &set) {
    std::string text;
    for (const auto &[name, value] : set)
        text.append(text.empty() ? "" : " ").append(name).append("=") += std::to_string(value);
    return text;
}

void print_search(const lab_search &search, const search_result &found) {
    printf("%zu sets in %zu plays; energy saved and frames lost are a model's result:\n",
           found.tried, found.plays);
    printf("   saved, of the mean    lost   at most  of               moved  seeds\n");
    print_set(found.first);
    printf("that are the daemon's own figures; the front:\n");
    for (const set_verdict &each : found.front)
        print_set(each);
    print_folded(
        "At most: the frames per second that a game's mean over all seeds is below in 95 "
        "of 100 cases; moved: cap changes a minute in the game that has most.",
        0);
    if (found.chosen == nullptr) {
        printf("No set holds:\n");
        size_t shown_sets = 0;
        for (const set_verdict &each : found.front)
            if (shown_sets++ < nearest_shown)
                print_folded(shown(set_text(each.tried->set) + ": " + each.broken_by), 2);
        return;
    }
    printf("most saved where no game loses more than %.2f frames per second:\n%s\n",
           search.options.max_loss, shown(set_text(found.chosen->set)).c_str());
    print_verdict(search, found);
    if (found.best == nullptr)
        printf("None that held in the search holds there.\n");
}

void print_changes(const std::vector<set_change> &changes, int seeds) {
    printf("   saved   change (from to)       lost  change (from to)       moved  figure\n");
    for (const set_change &each : changes) {
        const std::string name = each.set.empty() ? "the daemon's own figures" : set_text(each.set);
        if (!each.error.empty()) {
            printf("  %s: %s\n", name.c_str(), shown(each.error).c_str());
            continue;
        }
        printf("%6.1f %%  %+5.1f (%+5.1f %+5.1f)   %6.2f  %+5.2f (%+5.2f %+5.2f)   %5.1f  %s\n",
               each.saved * 100, each.saved_change.mean * 100, each.saved_change.low * 100,
               each.saved_change.high * 100, each.lost, each.lost_change.mean, each.lost_change.low,
               each.lost_change.high, each.changes, name.c_str());
    }
    print_folded(
        "Means of all games, each figure moved alone; changes are of pairs of plays with "
        "the same work over " +
            std::to_string(seeds) + " seeds, from and to in 95 of 100 cases.",
        0);
}
