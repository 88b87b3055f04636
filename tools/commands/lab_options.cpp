#include "tools/commands/lab_options.h"

#include <stdio.h>
#include <stdlib.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <iterator>
#include <sstream>

#include "tools/base/files.h"
#include "tools/base/words.h"
#include "tools/lab/csv_rows.h"
#include "tools/lab/device_file.h"
#include "tools/lab/games.h"
#include "tools/lab/variation.h"

namespace {

// Keeps the games that were asked for. Empty, or what is wrong.
std::string choose_games(const std::vector<std::string> &names, std::vector<game_work> *games) {
    std::vector<game_work> chosen;
    for (const std::string &name : names) {
        const auto found = std::find_if(games->begin(), games->end(),
                                        [&](const game_work &game) { return game.name == name; });
        if (found == games->end()) {
            std::vector<std::string> known;
            for (const game_work &game : *games)
                known.push_back(game.name);
            const std::string nearest = nearest_word(name, known);
            return "no game is named '" + name + "'" +
                   (nearest.empty() ? "" : ", did you mean '" + nearest + "'?");
        }
        chosen.push_back(*found);
    }
    if (!chosen.empty())
        *games = chosen;
    return {};
}

governor governor_of(const std::string &name) {
    return name == "eager" ? governor::eager : name == "max" ? governor::max : governor::fit;
}

std::string joined(const std::vector<std::string> &words) {
    std::string text;
    for (const std::string &word : words)
        text.append(text.empty() ? "" : " ").append(word);
    return text;
}

// A file's content as a condition of a search: another content is another search.
std::string mark_of(const std::string &path) {
    char mark[20];
    snprintf(
        mark, sizeof(mark), "%016llx",
        static_cast<unsigned long long>(stream_of(0, read_file(path), stream_purpose::draw).key));
    return path.empty() ? "" : mark;
}

// Every place where the games are to be played. Empty, or what is wrong.
std::string make_places(const lab_arguments &given, std::vector<search_place> *places) {
    for (const std::string &name : given.devices) {
        const device_model device = device_model_read(name);
        if (!device.error.empty())
            return name + ": " + device.error;
        simulated_figures figures;
        std::string wrong = device_model_levels(device, &figures);
        if (wrong.empty())
            wrong = settings_apply_all(&figures, given.settings);
        if (wrong.empty())
            wrong = device_model_check(device, figures);
        if (!wrong.empty())
            return wrong;
        std::vector<double> panels = given.panels;
        if (panels.empty())
            panels = {device.panel_hz};
        std::vector<int> buffers = given.buffers;
        if (buffers.empty())
            buffers = {device.buffers};
        for (const double panel_hz : panels)
            for (const std::string &picks : given.picks)
                for (const int count : buffers)
                    places->push_back({short_number(panel_hz) + " Hz, " + picks + ", " +
                                           std::to_string(count) + " buffers, " + device.name,
                                       {device, panel_hz, governor_of(picks), count,
                                        given.base_mw.value_or(device.base_mw)},
                                       figures});
    }
    return {};
}

template <typename number>
std::string listed(const std::vector<number> &numbers) {
    std::vector<std::string> words(numbers.size());
    std::transform(numbers.begin(), numbers.end(), words.begin(),
                   [](number each) { return short_number(static_cast<double>(each)); });
    return joined(words);
}

std::vector<std::string> split_words(const std::string &text) {
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

template <typename number>
std::vector<number> split_numbers(const std::string &text) {
    std::vector<number> numbers;
    for (const std::string &word : split_words(text))
        numbers.push_back(static_cast<number>(csv_number(word).value_or(0)));
    return numbers;
}

// All that a search is made under, as its file has it: its options, and what the files that they
// name hold.
void note_conditions(lab_arguments *given) {
    const lab_setup &setup = given->search.setup;
    std::vector<std::string> marks = {mark_of(given->games_file), mark_of(given->vary_from)};
    for (const std::string &device : given->devices)
        marks.push_back(mark_of(device));
    given->search.conditions = {{"version", DVX_VERSION},
                                {"game", joined(given->games)},
                                {"games", given->games_file},
                                {"minutes", short_number(setup.minutes)},
                                {"seed", std::to_string(setup.seed)},
                                {"panel", listed(given->panels)},
                                {"governor", joined(given->picks)},
                                {"buffers", listed(given->buffers)},
                                {"device", joined(given->devices)},
                                {"base-mw", given->base_mw ? short_number(*given->base_mw) : ""},
                                {"limit", given->limit_fps ? short_number(*given->limit_fps) : ""},
                                {"set", joined(given->settings)},
                                {"vary", joined(given->search.options.vary)},
                                {"vary-from", given->vary_from},
                                {"files", trimmed_text(joined(marks))}};
}

}  // namespace

void lab_add_model_options(CLI::App *command, lab_arguments *given) {
    command->add_option("--game", given->games, "Play this game only; may be given several times")
        ->allow_extra_args(false);
    command->add_option("--games", given->games_file,
                        "Play the games of this table instead of the lab's own");
    command
        ->add_option("--minutes", given->search.setup.minutes,
                     "How many minutes each game is played")
        ->check(CLI::Range(0.1, 600.0))
        ->capture_default_str();
    command->add_option("--seed", given->search.setup.seed, "Seed of each game's first play")
        ->capture_default_str();
    command
        ->add_option("--seeds", given->search.setup.seeds,
                     "How often each game is played, seed by seed")
        ->check(CLI::Range(1, 10000))
        ->capture_default_str();
    command
        ->add_option("--device", given->devices,
                     "The device: " + joined(device_model_names()) + ", or a file")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->capture_default_str();
    command
        ->add_option("--panel", given->panels,
                     "The panel's real refresh rate, in Hz; the device's where nothing is said")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::Range(24.0, 240.0));
    command->add_option("--governor", given->picks, "How clocks below the caps are picked")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::IsMember({"fit", "eager", "max"}))
        ->capture_default_str();
    command
        ->add_option("--buffers", given->buffers,
                     "2: a frame is begun when the last is seen; 3: one is drawn ahead")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::Range(2, 3));
    command
        ->add_option("--base-mw", given->base_mw,
                     "Power of all that caps do not reach, in mW; shares are then of the whole")
        ->check(CLI::Range(0.0, 100000.0));
    command
        ->add_option("--limit", given->limit_fps,
                     "Frames per second that each game limits itself to; 0: none does")
        ->check(CLI::Range(0.0, 240.0));
    command->add_option(
        "--vary-from", given->vary_from,
        "Vary the work of frames as the frame times in this file vary around their median");
    command
        ->add_option("--jobs", given->search.setup.jobs,
                     "How many games are played at once; one per core by default")
        ->check(CLI::Range(1, 1024));
    command->add_flag("--json", given->search.options.json,
                      "Print one JSON object per game, or per set");
}

void lab_add_set_option(CLI::App *command, lab_arguments *given) {
    command
        ->add_option("--set", given->settings,
                     "NAME=VALUE: another value for one of the analyser's figures")
        ->allow_extra_args(false);
}

std::string lab_prepare(lab_arguments *given) {
    lab_setup *setup = &given->search.setup;
    const std::string path = given->games_file.empty() ? games_path() : given->games_file;
    game_list list = games_read(path);
    if (!list.error.empty())
        return path + ": " + list.error;
    setup->games = std::move(list.games);
    std::string wrong = choose_games(given->games, &setup->games);
    if (wrong.empty())
        wrong = make_places(*given, &given->search.places);
    if (!wrong.empty())
        return wrong;
    for (game_work &game : setup->games)
        game.limit_fps = given->limit_fps.value_or(game.limit_fps);
    setup->on = given->search.places[0].on;
    setup->figures = given->search.places[0].figures;
    if (wrong.empty() && !given->vary_from.empty())
        wrong = variation_read(given->vary_from, &setup->varies);
    std::error_code error;
    if (!setup->record.empty() && !std::filesystem::is_directory(setup->record, error) &&
        !std::filesystem::create_directories(setup->record, error))
        return "cannot make the directory " + setup->record;
    if (wrong.empty())
        note_conditions(given);
    return wrong;
}

void lab_take_conditions(lab_arguments *given, std::map<std::string, std::string> conditions) {
    lab_setup *setup = &given->search.setup;
    given->games = split_words(conditions["game"]);
    given->games_file = conditions["games"];
    setup->minutes = csv_number(conditions["minutes"]).value_or(setup->minutes);
    setup->seed = strtoull(conditions["seed"].c_str(), nullptr, 10);
    given->panels = split_numbers<double>(conditions["panel"]);
    given->picks = split_words(conditions["governor"]);
    given->buffers = split_numbers<int>(conditions["buffers"]);
    given->devices = split_words(conditions["device"]);
    given->base_mw = csv_number(conditions["base-mw"]);
    given->limit_fps = csv_number(conditions["limit"]);
    given->settings = split_words(conditions["set"]);
    given->search.options.vary = split_words(conditions["vary"]);
    given->vary_from = conditions["vary-from"];
}
