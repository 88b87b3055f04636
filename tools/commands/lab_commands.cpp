#include "tools/commands/lab_commands.h"

#include <stdio.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <memory>
#include <thread>

#include "tools/base/exit_status.h"
#include "tools/base/output_file.h"
#include "tools/base/shown.h"
#include "tools/base/words.h"
#include "tools/commands/command_line.h"
#include "tools/frames/frame_file.h"
#include "tools/lab/games.h"
#include "tools/lab/lab_json.h"
#include "tools/lab/results.h"
#include "tools/lab/search.h"
#include "tools/lab/table.h"
#include "tools/simulated/settings.h"

namespace {

// What the words of the command line say.
struct arguments {
    std::vector<std::string> games;
    std::string games_file;
    std::vector<std::string> settings;
    std::string picks = "eager";
    std::string vary_from;
    std::string out;
    std::vector<std::string> files;
    bool json = false;
    lab_setup setup;
    search_options search;
};

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

// Lets work vary as the intervals of a file do around their median. Empty, or what is wrong.
std::string vary_as(const std::string &path, variation *varies) {
    frame_file frames = frame_file_read(path, {});
    if (!frames.error.empty())
        return path + ": " + frames.error;
    std::vector<double> sorted = frames.intervals_us;
    const auto middle = sorted.begin() + static_cast<long>(sorted.size() / 2);
    std::nth_element(sorted.begin(), middle, sorted.end());
    for (double &interval_us : frames.intervals_us)
        interval_us /= *middle;
    varies->factors = std::move(frames.intervals_us);
    return {};
}

// Brings what was given into the setup. Empty, or what is wrong.
std::string prepare(arguments *given) {
    lab_setup *setup = &given->setup;
    const std::string path = given->games_file.empty() ? games_path() : given->games_file;
    game_list list = games_read(path);
    if (!list.error.empty())
        return path + ": " + list.error;
    setup->games = std::move(list.games);
    std::string wrong = choose_games(given->games, &setup->games);
    if (wrong.empty())
        wrong = settings_apply_all(&setup->figures, given->settings);
    setup->picks = given->picks == "fit"   ? governor::fit
                   : given->picks == "max" ? governor::max
                                           : governor::eager;
    if (wrong.empty() && !given->vary_from.empty())
        wrong = vary_as(given->vary_from, &setup->varies);
    std::error_code error;
    if (!setup->record.empty() && !std::filesystem::is_directory(setup->record, error) &&
        !std::filesystem::create_directories(setup->record, error))
        return "cannot make the directory " + setup->record;
    return wrong;
}

int run_lab(arguments *given) {
    const std::string wrong = prepare(given);
    if (!wrong.empty())
        return refuse(wrong);
    const std::vector<game_result> results = lab_run(given->setup);
    for (const game_result &result : results)
        if (!result.error.empty())
            return refuse(result.game + ": the simulated daemon " + result.error);
    for (const game_result &result : results)
        if (!result.unwritten.empty())
            return fail("cannot write " + result.unwritten);
    if (given->json)
        for (const game_result &result : results)
            printf("%s\n", game_result_line(result).c_str());
    else
        print_results(results);
    const bool left = std::any_of(results.begin(), results.end(),
                                  [](const game_result &result) { return result.caps_left; });
    return left ? exit_found : 0;
}

int run_search(arguments *given) {
    const std::string wrong = prepare(given);
    if (!wrong.empty())
        return refuse(wrong);
    given->search.json = given->json;
    given->search.inputs = {given->games_file, given->vary_from};
    return search_command(given->setup, given->search);
}

int write_table(arguments *given) {
    const std::string wrong = prepare(given);
    if (!wrong.empty())
        return refuse(wrong);
    const std::string unwritten = output_whole(given->out, figures_source(given->setup.figures));
    if (!unwritten.empty())
        return fail("cannot write " + unwritten);
    printf("%s: the daemon's table; it takes the place of src/fia/freq_tables.cpp\n",
           shown(given->out).c_str());
    return 0;
}

void add_model_options(CLI::App *command, arguments *given) {
    command->add_option("--game", given->games, "Play this game only; may be given several times")
        ->allow_extra_args(false);
    command->add_option("--games", given->games_file,
                        "Play the games of this table instead of the lab's own");
    command->add_option("--minutes", given->setup.minutes, "How many minutes each game is played")
        ->check(CLI::Range(0.1, 600.0))
        ->capture_default_str();
    command->add_option("--seed", given->setup.seed, "Seed of everything that is random")
        ->capture_default_str();
    command->add_option("--panel", given->setup.panel_hz, "The panel's real refresh rate, in Hz")
        ->check(CLI::Range(24.0, 240.0))
        ->capture_default_str();
    command->add_option("--governor", given->picks, "How frequencies below the caps are picked")
        ->check(CLI::IsMember({"fit", "eager", "max"}))
        ->capture_default_str();
    command
        ->add_option("--buffers", given->setup.varies.buffers,
                     "2: a frame is begun when the last is seen; 3: one is drawn ahead")
        ->check(CLI::Range(2, 3))
        ->capture_default_str();
    command->add_option(
        "--vary-from", given->vary_from,
        "Vary the work of frames as the frame times in this file vary around their median");
    command
        ->add_option("--jobs", given->setup.jobs,
                     "How many games are played at once; one per core by default")
        ->check(CLI::Range(1, 1024));
    command->add_flag("--json", given->json, "Print one JSON object per game, or per set");
}

void add_set_option(CLI::App *command, arguments *given) {
    command
        ->add_option("--set", given->settings,
                     "NAME=VALUE: another value for one of the analyser's figures")
        ->allow_extra_args(false);
}

}  // namespace

void add_lab_commands(CLI::App *app, command_context *context) {
    auto given = std::make_shared<arguments>();
    given->setup.jobs = static_cast<int>(std::max(std::thread::hardware_concurrency(), 1u));
    CLI::App *lab =
        app->add_subcommand("lab", "Play games against the simulated daemon, in closed loop")
            ->group("Lab");
    add_model_options(lab, given.get());
    add_set_option(lab, given.get());
    lab->add_option("--record", given->setup.record,
                    "Write one recording per game to this directory");
    lab->require_subcommand(0, 1);
    CLI::App *search = lab->add_subcommand("search", "Look for better figures of the analyser");
    search
        ->add_option("--vary", given->search.vary,
                     "NAME=LO..HI[:STEP]: a figure to vary; may be given several times")
        ->required()
        ->allow_extra_args(false);
    search
        ->add_option("--max-loss", given->search.max_loss,
                     "The most frames per second that any game may lose")
        ->capture_default_str();
    search->add_option("--samples", given->search.samples, "How many sets to try at most")
        ->check(CLI::Range(1, 1000000))
        ->capture_default_str();
    search
        ->add_option("--shard", given->search.shard,
                     "K/N: try every Nth set, starting with the Kth")
        ->capture_default_str();
    search->add_option("--out", given->search.out,
                       "Write each set that was tried to this file, a line each; a file of the "
                       "same search is continued");
    CLI::App *merge = lab->add_subcommand("merge", "Join what shards of a search have tried");
    merge->add_option("FILE", given->files, "A file that a search has written with --out")
        ->required();
    merge->add_option("--max-loss", given->search.max_loss, "The same as for search")
        ->capture_default_str();
    CLI::App *table =
        lab->add_subcommand("table", "Write the daemon's source table with these figures");
    table->add_option("--out", given->out, "The source file to write")->required();
    add_set_option(table, given.get());
    std::string shared;
    for (const CLI::Option *option : command_line_shared(search))
        shared += (shared.empty() ? "" : ", ") + option->get_name();
    search->footer("The options of dvxctl lab apply too: " + shared + ".");
    merge->footer("With --json it prints one JSON object, as search does.");
    lab->callback([=] {
        if (search->parsed())
            context->exit_code = run_search(given.get());
        else if (merge->parsed())
            context->exit_code = merge_command(given->files, given->search.max_loss, given->json);
        else if (table->parsed())
            context->exit_code = write_table(given.get());
        else
            context->exit_code = run_lab(given.get());
    });
}
