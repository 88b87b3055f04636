#include "tools/lab/search.h"

#include <stdio.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>
#include <set>

#include "tools/base/clock.h"
#include "tools/base/exit_status.h"
#include "tools/base/output_file.h"
#include "tools/base/terminal.h"
#include "tools/lab/lab_json.h"
#include "tools/lab/race.h"
#include "tools/lab/search_file.h"
#include "tools/lab/search_table.h"

namespace {

constexpr uint64_t grid_max = 1000000;
constexpr size_t values_max = 7;  // of a figure that is moved alone

using figure_set = std::vector<int64_t>;  // a value a figure that is varied

uint64_t count_values(const varied_figure &figure) {
    return static_cast<uint64_t>((figure.high - figure.low) / figure.step) + 1;
}

int64_t value_at(const varied_figure &figure, uint64_t index) {
    return figure.low + static_cast<int64_t>(index) * figure.step;
}

figure_set own_set(const std::vector<varied_figure> &figures, const simulated_figures &own) {
    figure_set set;
    for (const varied_figure &figure : figures)
        for (const auto &[name, value] : settings_of(own))
            if (name == figure.name)
                set.push_back(value);
    return set;
}

// A Latin hypercube: each figure's range in as many parts as there are samples, each part once, in
// an order of its own.
std::vector<figure_set> draw_hypercube(const std::vector<varied_figure> &figures, size_t samples,
                                       uint64_t seed) {
    std::vector<figure_set> sets(samples);
    for (const varied_figure &figure : figures) {
        const random_stream stream = stream_of(seed, figure.name, stream_purpose::draw);
        std::vector<size_t> order(samples);
        std::iota(order.begin(), order.end(), 0);
        for (size_t i = samples; i > 1; --i)
            std::swap(order[i - 1], order[random_at(stream, i) % i]);
        for (size_t i = 0; i < samples; ++i) {
            const double place = (static_cast<double>(order[i]) + uniform_at(stream, samples + i)) /
                                 static_cast<double>(samples);
            const double values = static_cast<double>(count_values(figure));
            sets[i].push_back(value_at(figure, static_cast<uint64_t>(place * values)));
        }
    }
    return sets;
}

std::vector<figure_set> whole_grid(const std::vector<varied_figure> &figures, uint64_t grid) {
    std::vector<figure_set> sets;
    for (uint64_t index = 0; index < grid; ++index) {
        figure_set set;
        uint64_t rest = index;
        for (const varied_figure &figure : figures) {
            set.push_back(value_at(figure, rest % count_values(figure)));
            rest /= count_values(figure);
        }
        sets.push_back(set);
    }
    return sets;
}

// The sets to try: the figures as they are, and the whole grid where it is no larger than asked
// for, else so many of it; each once.
std::vector<figure_set> draw_sets(const std::vector<varied_figure> &figures,
                                  const simulated_figures &own, const search_options &options) {
    uint64_t grid = 1;
    for (const varied_figure &figure : figures)
        grid = std::min(grid * count_values(figure), grid_max);
    const size_t samples = static_cast<size_t>(options.samples);
    const std::vector<figure_set> drawn = grid <= samples
                                              ? whole_grid(figures, grid)
                                              : draw_hypercube(figures, samples, options.draw_seed);
    std::vector<figure_set> sets = {own_set(figures, own)};
    std::set<figure_set> known = {sets[0]};
    for (const figure_set &set : drawn)
        if (known.insert(set).second)
            sets.push_back(set);
    return sets;
}

setting_list name_set(const std::vector<varied_figure> &figures, const figure_set &values) {
    setting_list set;
    for (size_t i = 0; i < figures.size(); ++i)
        set.emplace_back(figures[i].name, values[i]);
    return set;
}

// Sets of which no other saves more and may lose less, by what they save; of those that were played
// to the end of the race.
std::vector<set_verdict> find_front(const std::vector<set_verdict> &verdicts) {
    std::vector<set_verdict> good;
    for (const set_verdict &each : verdicts)
        if (each.tried->error.empty() && each.seeds >= race_rounds[std::size(race_rounds) - 1])
            good.push_back(each);
    std::stable_sort(good.begin(), good.end(), [](const set_verdict &a, const set_verdict &b) {
        return a.saved.mean > b.saved.mean;
    });
    std::vector<set_verdict> front;
    double least_lost = INFINITY;
    for (const set_verdict &each : good)
        if (each.worst_lost < least_lost) {
            least_lost = each.worst_lost;
            front.push_back(each);
        }
    return front;
}

int conclude(const lab_search &search, const std::vector<tried_set> &tried, size_t plays) {
    search_result found;
    found.tried = tried.size();
    found.plays = plays;
    const std::vector<set_verdict> verdicts = race_judge_all(search, tried);
    found.first = verdicts[0];
    found.front = find_front(verdicts);
    race_hold_out(search, tried, &found);
    if (search.options.json)
        printf("%s\n", search_line(found).c_str());
    else
        print_search(search, found);
    return found.best != nullptr ? 0 : exit_found;
}

void tell_progress(const char *what, size_t done, int64_t begin_ns) {
    if (isatty(STDERR_FILENO) == 0)
        return;
    fprintf(stderr, "\r%zu %s, %.0f s ", done, what,
            static_cast<double>(monotonic_ns() - begin_ns) / 1e9);
}

// Reads the figures that are to vary. Empty, or what is wrong.
std::string read_varied(const lab_search &search, std::vector<varied_figure> *figures) {
    for (const std::string &text : search.options.vary) {
        const std::string wrong = varied_figure_read(text, &figures->emplace_back());
        if (!wrong.empty())
            return "--vary: " + wrong;
    }
    return {};
}

bool read_shard(const std::string &text, unsigned *shard, unsigned *shards) {
    int end = 0;
    return sscanf(text.c_str(), "%u/%u%n", shard, shards, &end) == 2 &&
           static_cast<size_t>(end) == text.size() && *shard >= 1 && *shard <= *shards;
}

// The sets that a shard races, with what is known of them: the daemon's own figures first, in each
// shard.
std::vector<tried_set> sets_of_shard(const lab_search &search,
                                     const std::vector<varied_figure> &figures,
                                     const tried_file &before, unsigned shard, unsigned shards) {
    const std::vector<figure_set> sets = draw_sets(figures, search.setup.figures, search.options);
    std::vector<tried_set> mine;
    for (size_t i = 0; i < sets.size(); ++i) {
        if (i != 0 && i % shards != shard % shards)
            continue;
        const setting_list set = name_set(figures, sets[i]);
        const auto known = std::find_if(before.sets.begin(), before.sets.end(),
                                        [&](const tried_set &each) { return each.set == set; });
        mine.push_back(known != before.sets.end() ? *known : tried_set{set, "", {}, false});
    }
    return mine;
}

}  // namespace

std::string varied_figure_read(const std::string &text, varied_figure *figure) {
    char name[64];
    long low;
    long high;
    long step = 1;
    int end = 0;
    if (sscanf(text.c_str(), "%63[^=]=%ld..%ld%n", name, &low, &high, &end) != 3 || end == 0)
        return "'" + text + "' is not NAME=LO..HI[:STEP]";
    int behind = end;
    if (text[static_cast<size_t>(end)] == ':' &&
        sscanf(text.c_str() + end, ":%ld%n", &step, &behind) == 1)
        behind += end;
    if (static_cast<size_t>(behind) != text.size())
        return "'" + text + "' is not NAME=LO..HI[:STEP]";
    if (step < 1 || high < low)
        return "'" + text + "' is an empty range";
    *figure = {name, low, high, step};
    simulated_figures figures;
    std::string wrong = setting_apply(&figures, name, low);
    if (wrong.empty())
        wrong = setting_apply(&figures, name, high);
    return wrong;
}

int search_command(const lab_search &search) {
    const search_options &options = search.options;
    std::vector<varied_figure> figures;
    const std::string wrong_figure = read_varied(search, &figures);
    if (!wrong_figure.empty())
        return refuse(wrong_figure);
    unsigned shard, shards;
    if (!read_shard(options.shard, &shard, &shards))
        return refuse("--shard is K/N with K from 1 to N, not '" + options.shard + "'");
    tried_file before;
    output_file out;
    if (!options.out.empty()) {
        const std::string wrong = search_file_read(options.out, search, true, &before);
        if (!wrong.empty())
            return refuse(wrong);
        out = output_continue(options.out, before.whole_bytes, options.inputs);
    }
    if (!out.error.empty())
        return refuse(out.error);
    std::vector<tried_set> mine = sets_of_shard(search, figures, before, shard, shards);
    std::vector<tried_set> written = mine;
    const int64_t begin_ns = monotonic_ns();
    size_t plays = 0;
    std::string unwritten;
    race_run(search, &mine, &plays, [&](const tried_set &tried, size_t) {
        tried_set *last = &written[static_cast<size_t>(&tried - mine.data())];
        const std::string line = tried_plays_line(plays_since(search, tried, *last));
        *last = tried;
        tell_progress("plays", plays, begin_ns);
        if (out.fd >= 0 && !output_append(&out, line))
            unwritten = out.error;
        if (options.json) {
            printf("%s\n", line.c_str());
            fflush(stdout);
        }
        return unwritten.empty();
    });
    if (unwritten.empty())
        unwritten = output_finish(&out);
    if (!unwritten.empty())
        return fail("cannot write " + unwritten);
    if (shards > 1) {
        print_folded("Shard " + options.shard + ": " + std::to_string(mine.size()) + " sets in " +
                         std::to_string(plays) +
                         " plays; dvxctl lab merge takes all shards and "
                         "chooses.",
                     0);
        return 0;
    }
    return conclude(search, mine, plays);
}

int merge_command(const lab_search &search, const std::vector<std::string> &paths) {
    tried_file all;
    for (const std::string &path : paths) {
        if (access(path.c_str(), R_OK) != 0)
            return refuse("cannot read " + path);
        all.whole_bytes = 0;
        const std::string wrong = search_file_read(path, search, false, &all);
        if (!wrong.empty())
            return refuse(wrong);
    }
    if (all.sets.empty())
        return refuse(paths[0] + (paths.size() > 1 ? " and the others hold" : " holds") +
                      " no set that was tried");
    // Those that still may win are played on, as if one process had raced them all.
    size_t plays = 0;
    race_run(search, &all.sets, &plays, [](const tried_set &, size_t) { return true; });
    return conclude(search, all.sets, plays);
}

int vary_command(const lab_search &search) {
    std::vector<varied_figure> figures;
    const std::string wrong = read_varied(search, &figures);
    if (!wrong.empty())
        return refuse(wrong);
    const size_t seeds = static_cast<size_t>(search.setup.seeds);
    size_t plays = 0;
    lab_search all = search;
    all.options.max_loss = INFINITY;  // all games are played
    tried_set own;
    race_try(all, seeds, &own, &plays, play_all);
    if (!own.error.empty())
        return refuse(own.error);
    const int64_t begin_ns = monotonic_ns();
    std::vector<set_change> changes = {compare_sets(own, own)};
    for (const varied_figure &figure : figures) {
        const uint64_t values = count_values(figure);
        const uint64_t every = (values + values_max - 1) / values_max;
        for (uint64_t i = 0; i < values; i += every) {
            tried_set moved;
            moved.set = {{figure.name, value_at(figure, i)}};
            if (moved.set[0].second == own_set({figure}, search.setup.figures)[0])
                continue;
            race_try(all, seeds, &moved, &plays, play_all);
            tell_progress("plays", plays, begin_ns);
            changes.push_back(compare_sets(moved, own));
        }
    }
    if (search.options.json) {
        for (const set_change &each : changes)
            printf("%s\n", set_change_line(each).c_str());
        return 0;
    }
    print_changes(changes, search.setup.seeds);
    return 0;
}
