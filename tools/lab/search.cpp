#include "tools/lab/search.h"

#include <stdio.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <random>
#include <set>

#include "tools/base/clock.h"
#include "tools/base/exit_status.h"
#include "tools/base/output_file.h"
#include "tools/base/shown.h"
#include "tools/base/whole_file.h"
#include "tools/lab/lab_json.h"
#include "tools/simulated/settings.h"

namespace {

constexpr uint64_t grid_max = 1000000;

using figure_set = std::vector<int64_t>;  // a value a figure that is varied

uint64_t count_values(const varied_figure &figure) {
    return static_cast<uint64_t>((figure.high - figure.low) / figure.step) + 1;
}

// The sets to try: the figures as they are, and the whole grid where it is no larger than asked
// for, else so many of it.
std::vector<figure_set> draw_sets(const std::vector<varied_figure> &figures,
                                  const simulated_figures &as_they_are, int samples,
                                  uint64_t seed) {
    uint64_t grid = 1;
    for (const varied_figure &figure : figures)
        grid = std::min(grid * count_values(figure), grid_max);
    const bool whole = grid <= static_cast<uint64_t>(samples);
    std::mt19937_64 random(seed);
    std::vector<figure_set> sets(1);
    for (const varied_figure &figure : figures)
        for (const auto &[name, value] : settings_of(as_they_are))
            if (name == figure.name)
                sets[0].push_back(value);
    std::set<figure_set> drawn;
    const uint64_t wanted = whole ? grid : static_cast<uint64_t>(samples);
    for (uint64_t index = 0; drawn.size() < wanted; ++index) {
        figure_set set;
        uint64_t rest = index;
        for (const varied_figure &figure : figures) {
            const uint64_t values = count_values(figure);
            const uint64_t pick = whole ? rest % values : random() % values;
            rest /= values;
            set.push_back(figure.low + static_cast<int64_t>(pick) * figure.step);
        }
        if (drawn.insert(set).second && set != sets[0])
            sets.push_back(set);
    }
    return sets;
}

setting_list name_set(const std::vector<varied_figure> &figures, const figure_set &values) {
    setting_list set;
    for (size_t i = 0; i < figures.size(); ++i)
        set.emplace_back(figures[i].name, values[i]);
    return set;
}

// Applies a set. Empty, or why it cannot be.
std::string apply_set(const setting_list &set, simulated_figures *figures) {
    for (const auto &[name, value] : set) {
        std::string wrong = setting_apply(figures, name, value);
        if (!wrong.empty())
            return wrong;
    }
    return settings_check(*figures);
}

// What a set comes to over all games.
tried_set try_set(lab_setup setup, const setting_list &set) {
    tried_set tried;
    tried.set = set;
    tried.error = apply_set(set, &setup.figures);
    if (!tried.error.empty())
        return tried;
    for (const game_result &result : lab_run(setup)) {
        if (!result.error.empty()) {
            tried.error = result.game + ": " + result.error;
            return tried;
        }
        const tried_game game = {result.game, lab_fps_lost(result), lab_energy_saved(result)};
        tried.energy_saved += game.saved;
        tried.fps_lost += game.lost;
        tried.caps_left |= result.caps_left;
        if (tried.games.empty() || game.lost > tried.worst_lost) {
            tried.worst_lost = game.lost;
            tried.worst_game = game.name;
        }
        tried.games.push_back(game);
    }
    const double count = static_cast<double>(setup.games.size());
    tried.minutes = setup.minutes;
    tried.energy_saved /= count;
    tried.fps_lost /= count;
    return tried;
}

// Why a set that was tried is of no use here; empty where it is of this very search.
std::string check_tried(const tried_set &tried, const lab_setup &setup,
                        const std::vector<varied_figure> &figures) {
    const auto has_figure = [&](const varied_figure &figure) {
        return std::any_of(tried.set.begin(), tried.set.end(),
                           [&](const auto &each) { return each.first == figure.name; });
    };
    const auto has_game = [&](const game_work &game) {
        return std::any_of(tried.games.begin(), tried.games.end(),
                           [&](const tried_game &each) { return each.name == game.name; });
    };
    if (tried.set.size() != figures.size() ||
        !std::all_of(figures.begin(), figures.end(), has_figure))
        return "its sets vary other figures";
    if (tried.error.empty() &&
        (tried.games.size() != setup.games.size() || tried.minutes != setup.minutes ||
         !std::all_of(setup.games.begin(), setup.games.end(), has_game)))
        return "its sets were tried on other games, or for another time";
    return {};
}

// What a file holds of a search.
struct tried_file {
    std::vector<tried_set> sets;
    size_t whole_bytes = 0;  // of the lines that are ended
    bool last_open = false;  // the last set's line is not
};

// Reads lines of tried sets. Empty, or what is wrong.
std::string read_tried(const std::string &path, tried_file *tried) {
    std::error_code error;
    if (!std::filesystem::exists(path, error))
        return {};
    if (!std::filesystem::is_regular_file(path, error))
        return path + " is no file";
    const whole_file content = whole_file_open(path);
    if (!content.error.empty())
        return path + ": " + content.error;
    const std::string_view text = content.text;
    for (int number = 1; tried->whole_bytes < text.size(); ++number) {
        const size_t end = text.find('\n', tried->whole_bytes);
        const std::string_view line = text.substr(tried->whole_bytes, end - tried->whole_bytes);
        const bool ended = end != std::string_view::npos;
        tried_set read;
        const bool good = tried_set_read(line, &read);
        if (good)
            tried->sets.push_back(std::move(read));
        else if (ended || number == 1 || !line.starts_with("{"))
            return path + ": line " + std::to_string(number) + ": is no set that was tried";
        tried->last_open = good && !ended;
        if (!ended)  // cut off while it was written
            break;
        tried->whole_bytes = end + 1;
    }
    return {};
}

// Sets of which no other saves more and loses less, by what they save.
std::vector<tried_set> find_front(const std::vector<tried_set> &tried) {
    std::vector<tried_set> good;
    for (const tried_set &each : tried)
        if (each.error.empty())
            good.push_back(each);
    std::stable_sort(good.begin(), good.end(), [](const tried_set &a, const tried_set &b) {
        return a.energy_saved > b.energy_saved;
    });
    std::vector<tried_set> front;
    double least_lost = INFINITY;
    for (const tried_set &each : good)
        if (each.worst_lost < least_lost) {
            least_lost = each.worst_lost;
            front.push_back(each);
        }
    return front;
}

void print_set(const tried_set &each) {
    printf("%6.1f %%  %8.2f  %8.2f  %-16s", each.energy_saved * 100, each.fps_lost, each.worst_lost,
           shown(each.worst_game).c_str());
    for (const auto &[name, value] : each.set)
        printf(" %s=%lld", shown(name).c_str(), static_cast<long long>(value));
    printf("\n");
}

void print_front(const std::vector<tried_set> &tried, const std::vector<tried_set> &front,
                 const tried_set *best, double max_loss) {
    printf("%zu sets tried, energy saved and frames lost as a model's result:\n", tried.size());
    printf("   saved  lost, mean    at most  of\n");
    if (!tried.empty() && tried[0].error.empty()) {
        print_set(tried[0]);
        printf("that is the first one; the front:\n");
    }
    for (const tried_set &each : front)
        print_set(each);
    if (best == nullptr) {
        printf("in no set does every game lose at most %.2f frames per second\n", max_loss);
        return;
    }
    printf("most saved where no game loses more than %.2f frames per second:\n", max_loss);
    print_set(*best);
}

int conclude(const std::vector<tried_set> &tried, double max_loss, bool json) {
    const std::vector<tried_set> front = find_front(tried);
    const auto found = std::find_if(front.begin(), front.end(), [&](const tried_set &each) {
        return each.worst_lost <= max_loss;
    });
    const tried_set *best = found != front.end() ? &*found : nullptr;
    if (json)
        printf("%s\n", search_line(tried.size(), front, best).c_str());
    else
        print_front(tried, front, best, max_loss);
    return best != nullptr ? 0 : exit_found;
}

void tell_progress(size_t done, size_t all, int64_t begin_ns) {
    if (isatty(STDERR_FILENO) == 0 || done == 0)
        return;
    const double took_s = static_cast<double>(monotonic_ns() - begin_ns) / 1e9;
    fprintf(stderr, "\r%zu of %zu sets, %.0f s left ", done, all,
            took_s / static_cast<double>(done) * static_cast<double>(all - done));
    if (done == all)
        fprintf(stderr, "\n");
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

int search_command(const lab_setup &setup, const search_options &options) {
    std::vector<varied_figure> figures;
    for (const std::string &text : options.vary) {
        const std::string wrong = varied_figure_read(text, &figures.emplace_back());
        if (!wrong.empty())
            return refuse("--vary: " + wrong);
    }
    unsigned shard = 0;
    unsigned shards = 0;
    int end = 0;
    if (sscanf(options.shard.c_str(), "%u/%u%n", &shard, &shards, &end) != 2 ||
        static_cast<size_t>(end) != options.shard.size() || shard < 1 || shard > shards)
        return refuse("--shard is K/N with K from 1 to N, not '" + options.shard + "'");
    tried_file before;
    if (!options.out.empty()) {
        const std::string wrong = read_tried(options.out, &before);
        if (!wrong.empty())
            return refuse(wrong);
        for (const tried_set &each : before.sets) {
            const std::string other = check_tried(each, setup, figures);
            if (!other.empty())
                return refuse(options.out + " is of another search: " + other);
        }
    }
    output_file out;
    if (!options.out.empty())
        out = output_continue(options.out, before.whole_bytes, options.inputs);
    if (!out.error.empty())
        return refuse(out.error);
    std::vector<tried_set> tried = std::move(before.sets);
    if (before.last_open && !output_append(&out, tried_set_line(tried.back())))
        return fail("cannot write " + out.error);
    const std::vector<figure_set> sets =
        draw_sets(figures, setup.figures, options.samples, setup.seed);
    std::vector<setting_list> mine;
    for (size_t i = shard - 1; i < sets.size(); i += shards)
        mine.push_back(name_set(figures, sets[i]));
    const int64_t begin_ns = monotonic_ns();
    size_t done = 0;
    for (const setting_list &set : mine) {
        tell_progress(done++, mine.size(), begin_ns);
        if (std::any_of(tried.begin(), tried.end(),
                        [&](const tried_set &each) { return each.set == set; }))
            continue;
        tried.push_back(try_set(setup, set));
        if (out.fd >= 0 && !output_append(&out, tried_set_line(tried.back())))
            return fail("cannot write " + out.error);
        if (options.json) {
            printf("%s\n", tried_set_line(tried.back()).c_str());
            fflush(stdout);
        }
    }
    const std::string unwritten = output_finish(&out);
    if (!unwritten.empty())
        return fail("cannot write " + unwritten);
    tell_progress(done, mine.size(), begin_ns);
    return conclude(tried, options.max_loss, options.json);
}

int merge_command(const std::vector<std::string> &paths, double max_loss, bool json) {
    tried_file all;
    for (const std::string &path : paths) {
        if (access(path.c_str(), R_OK) != 0)
            return refuse("cannot read " + path);
        all.whole_bytes = 0;
        const std::string wrong = read_tried(path, &all);
        if (!wrong.empty())
            return refuse(wrong);
    }
    std::vector<tried_set> tried = std::move(all.sets);
    if (tried.empty())
        return refuse(paths[0] + (paths.size() > 1 ? " and the others hold" : " holds") +
                      " no set that was tried");
    std::set<setting_list> sets;  // what two shards have tried counts once
    std::erase_if(tried, [&](const tried_set &each) { return !sets.insert(each.set).second; });
    return conclude(tried, max_loss, json);
}
