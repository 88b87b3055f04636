#include "tools/lab/search.h"

#include <stdio.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <random>
#include <set>

#include "device/virtual_device.h"
#include "tools/base/exit_status.h"
#include "tools/base/json.h"
#include "tools/base/output_file.h"
#include "tools/base/shown.h"
#include "tools/base/whole_file.h"
#include "tools/simulated/settings.h"

using nlohmann::ordered_json;

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

ordered_json describe_set(const std::vector<varied_figure> &figures, const figure_set &set) {
    ordered_json said = ordered_json::object();
    for (size_t i = 0; i < figures.size(); ++i)
        said[figures[i].name] = set[i];
    return said;
}

// What a set comes to over all games; with "error" where it cannot be tried.
ordered_json try_set(lab_setup setup, const ordered_json &set) {
    ordered_json said = {{"set", set}};
    for (const auto &[name, value] : set.items()) {
        const std::string wrong = setting_apply(&setup.figures, name, value.get<int64_t>());
        if (!wrong.empty())
            return {{"set", set}, {"error", wrong}};
    }
    const std::string wrong = settings_check(setup.figures);
    if (!wrong.empty())
        return {{"set", set}, {"error", wrong}};
    double saved = 0;
    double lost = 0;
    double worst = 0;
    std::string worst_game;
    bool left = false;
    for (const game_result &result : lab_run(setup)) {
        if (!result.error.empty())
            return {{"set", set}, {"error", result.game + ": " + result.error}};
        const double loss = lab_fps_lost(result);
        saved += lab_energy_saved(result);
        lost += loss;
        left |= result.caps_left;
        if (worst_game.empty() || loss > worst) {
            worst = loss;
            worst_game = result.game;
        }
        said["games"][result.game] = {{"lost", loss}, {"saved", lab_energy_saved(result)}};
    }
    const double count = static_cast<double>(setup.games.size());
    said["minutes"] = setup.minutes;
    said["energy_saved"] = saved / count;
    said["fps_lost"] = lost / count;
    said["worst_lost"] = worst;
    said["worst_game"] = worst_game;
    said["caps_left"] = left;
    return said;
}

// Why a line that was tried is of no use here; empty where it is of this very search.
std::string check_tried(const ordered_json &each, const lab_setup &setup,
                        const std::vector<varied_figure> &figures) {
    const ordered_json &set = each["set"];
    bool same = set.size() == figures.size();
    for (const varied_figure &figure : figures)
        same &= set.contains(figure.name);
    if (!same)
        return "its sets vary other figures";
    if (each.contains("error"))
        return {};
    same = each.contains("games") && each["games"].size() == setup.games.size();
    for (const game_work &game : setup.games)
        same &= each.contains("games") && each["games"].contains(game.name);
    if (!same || each.value("minutes", setup.minutes) != setup.minutes)
        return "its sets were tried on other games, or for another time";
    return {};
}

bool has_numbers(const ordered_json &object, std::initializer_list<const char *> names) {
    return std::all_of(names.begin(), names.end(), [&](const char *name) {
        return object.contains(name) && object[name].is_number();
    });
}

// Whether a line has all that a tried set has, of the types that it has.
bool is_tried(const ordered_json &line) {
    if (!line.is_object() || !line.contains("set") || !line["set"].is_object())
        return false;
    const ordered_json &set = line["set"];
    if (set.empty() || !std::all_of(set.begin(), set.end(), [](const ordered_json &value) {
            return value.is_number_integer();
        }))
        return false;
    if (line.contains("error"))
        return line["error"].is_string();
    if (!has_numbers(line, {"minutes", "energy_saved", "fps_lost", "worst_lost"}) ||
        !line.contains("worst_game") || !line["worst_game"].is_string() ||
        !line.contains("games") || !line["games"].is_object())
        return false;
    const ordered_json &games = line["games"];
    return std::all_of(games.begin(), games.end(), [](const ordered_json &game) {
        return game.is_object() && has_numbers(game, {"lost", "saved"});
    });
}

// What a file holds of a search.
struct tried_file {
    std::vector<ordered_json> sets;
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
        ordered_json read = json_read(line);
        const bool good = is_tried(read);
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
std::vector<ordered_json> find_front(const std::vector<ordered_json> &tried) {
    std::vector<ordered_json> good;
    for (const ordered_json &each : tried)
        if (!each.contains("error"))
            good.push_back(each);
    std::stable_sort(good.begin(), good.end(), [](const ordered_json &a, const ordered_json &b) {
        return a["energy_saved"] > b["energy_saved"];
    });
    std::vector<ordered_json> front;
    double least_lost = INFINITY;
    for (const ordered_json &each : good)
        if (each["worst_lost"] < least_lost) {
            least_lost = each["worst_lost"].get<double>();
            front.push_back(each);
        }
    return front;
}

void print_set(const ordered_json &each) {
    printf("%6.1f %%  %8.2f  %8.2f  %-16s", each["energy_saved"].get<double>() * 100,
           each["fps_lost"].get<double>(), each["worst_lost"].get<double>(),
           shown(each["worst_game"].get<std::string>()).c_str());
    for (const auto &[name, value] : each["set"].items())
        printf(" %s=%s", shown(name).c_str(), json_write(value).c_str());
    printf("\n");
}

int conclude(const std::vector<ordered_json> &tried, double max_loss, bool json) {
    const std::vector<ordered_json> front = find_front(tried);
    const auto best = std::find_if(front.begin(), front.end(), [&](const ordered_json &each) {
        return each["worst_lost"] <= max_loss;
    });
    if (json) {
        ordered_json said = {{"tried", tried.size()}, {"front", front}};
        said["best"] = best != front.end() ? *best : ordered_json(nullptr);
        printf("%s\n", json_write(said).c_str());
    } else {
        printf("%zu sets tried, energy saved and frames lost as a model's result:\n", tried.size());
        printf("   saved  lost, mean    at most  of\n");
        if (!tried.empty() && !tried[0].contains("error")) {
            print_set(tried[0]);
            printf("that is the first one; the front:\n");
        }
        for (const ordered_json &each : front)
            print_set(each);
        if (best != front.end())
            printf("most saved where no game loses more than %.2f frames per second:\n", max_loss);
        else
            printf("in no set does every game lose at most %.2f frames per second\n", max_loss);
        if (best != front.end())
            print_set(*best);
    }
    return best != front.end() ? 0 : exit_found;
}

void tell_progress(size_t done, size_t all, int64_t begin_ns) {
    if (isatty(STDERR_FILENO) == 0 || done == 0)
        return;
    const double took_s = static_cast<double>(device_now_ns() - begin_ns) / 1e9;
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
        for (const ordered_json &each : before.sets) {
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
    std::vector<ordered_json> tried = std::move(before.sets);
    if (before.last_open && !output_append(&out, json_write(tried.back())))
        return fail("cannot write " + out.error);
    const std::vector<figure_set> sets =
        draw_sets(figures, setup.figures, options.samples, setup.seed);
    std::vector<ordered_json> mine;
    for (size_t i = shard - 1; i < sets.size(); i += shards)
        mine.push_back(describe_set(figures, sets[i]));
    const int64_t begin_ns = device_now_ns();
    size_t done = 0;
    for (const ordered_json &set : mine) {
        tell_progress(done++, mine.size(), begin_ns);
        if (std::any_of(tried.begin(), tried.end(),
                        [&](const ordered_json &each) { return each["set"] == set; }))
            continue;
        tried.push_back(try_set(setup, set));
        if (out.fd >= 0 && !output_append(&out, json_write(tried.back())))
            return fail("cannot write " + out.error);
        if (options.json) {
            printf("%s\n", json_write(tried.back()).c_str());
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
    std::vector<ordered_json> tried = std::move(all.sets);
    if (tried.empty())
        return refuse(paths[0] + (paths.size() > 1 ? " and the others hold" : " holds") +
                      " no set that was tried");
    std::set<std::string> sets;  // what two shards have tried counts once
    std::erase_if(tried, [&](const ordered_json &each) {
        return !sets.insert(json_write(each.at("set"))).second;
    });
    return conclude(tried, max_loss, json);
}
