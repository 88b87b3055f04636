#include "tools/commands/lab_commands.h"

#include <stdio.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>
#include <memory>
#include <thread>

#include "tools/base/exit_status.h"
#include "tools/base/files.h"
#include "tools/base/output_file.h"
#include "tools/base/shown.h"
#include "tools/commands/command_line.h"
#include "tools/commands/fit_commands.h"
#include "tools/commands/lab_options.h"
#include "tools/lab/lab_json.h"
#include "tools/lab/results.h"
#include "tools/lab/search.h"
#include "tools/lab/table.h"
#include "tools/simulated/settings.h"

namespace {

// Why games could not be played; all is well where it is empty.
result check_results(const std::vector<game_result> &results) {
    for (const game_result &result : results)
        if (!result.error.empty())
            return {failure::input, result.game + ": the simulated daemon " + result.error};
    for (const game_result &result : results)
        if (!result.unwritten.empty())
            return {failure::failed, "cannot write " + result.unwritten};
    return {};
}

// Plays all games in one place, with the daemon's own figures too where others are given.
result run_place(const lab_arguments &given, const search_place &place, bool *caps_left) {
    lab_setup setup = given.search.setup;
    setup.on = place.on;
    setup.figures = place.figures;
    const auto free = lab_run_free(setup);
    const std::vector<game_result> results = lab_run(setup, free);
    result came_out = check_results(results);
    std::vector<game_result> before;
    if (came_out.kind == failure::none && !given.settings.empty()) {
        setup.figures = {};
        setup.record.clear();
        const std::string wrong = device_model_levels(place.on.device, &setup.figures);
        if (!wrong.empty())
            return {failure::input, wrong};
        before = lab_run(setup, free);
        came_out = check_results(before);
    }
    if (came_out.kind != failure::none)
        return came_out;
    for (const game_result &each : results)
        for (const play_result &play : each.plays)
            *caps_left |= play.capped.caps_left;
    if (given.search.options.json) {
        for (size_t i = 0; i < results.size(); ++i)
            printf("%s\n", game_result_line(results[i], before.empty() ? nullptr : &before[i],
                                            setup.seed, place.name)
                               .c_str());
        return {};
    }
    if (given.search.places.size() > 1)
        printf("%s:\n", shown(place.name).c_str());
    print_results(results, setup.seed, place.on.base_mw > 0);
    if (!before.empty())
        print_comparison(before, results);
    return {};
}

int run_lab(lab_arguments *given) {
    const std::string wrong = lab_prepare(given);
    if (!wrong.empty())
        return refuse(wrong);
    bool caps_left = false;
    for (const search_place &place : given->search.places) {
        const result came_out = run_place(*given, place, &caps_left);
        if (came_out.kind != failure::none)
            return end_with(came_out);
    }
    return caps_left ? exit_found : 0;
}

int run_prepared(lab_arguments *given,
                 const std::function<int(const lab_search &search)> &command) {
    const std::string wrong = lab_prepare(given);
    if (!wrong.empty())
        return refuse(wrong);
    given->search.options.inputs = {given->games_file, given->vary_from};
    return command(given->search);
}

int run_merge(lab_arguments *given) {
    tried_plays first;
    const std::string content = read_file(given->files[0]);
    if (tried_plays_read(std::string_view(content).substr(0, content.find('\n')), &first))
        lab_take_conditions(given, first.conditions);
    return run_prepared(
        given, [&](const lab_search &search) { return merge_command(search, given->files); });
}

int write_table(lab_arguments *given) {
    const std::string wrong = lab_prepare(given);
    if (!wrong.empty())
        return refuse(wrong);
    const std::string unwritten =
        output_whole(given->out, figures_source(given->search.setup.figures));
    if (!unwritten.empty())
        return fail("cannot write " + unwritten);
    printf("%s: the daemon's table; it takes the place of src/fia/freq_tables.cpp\n",
           shown(given->out).c_str());
    return 0;
}

// The commands below lab.
struct lab_subcommands {
    CLI::App *search;
    CLI::App *merge;
    CLI::App *vary;
    CLI::App *table;
};

lab_subcommands add_subcommands(CLI::App *lab, lab_arguments *given) {
    CLI::App *search = lab->add_subcommand("search", "Look for better figures of the analyser");
    CLI::App *merge = lab->add_subcommand("merge", "Join what shards of a search have played");
    CLI::App *vary =
        lab->add_subcommand("vary", "Move one figure of the analyser at a time: what each changes");
    search_options *options = &given->search.options;
    for (CLI::App *each : {search, vary})
        each->add_option("--vary", options->vary,
                         "NAME=LO..HI[:STEP]: a figure to vary; may be given several times")
            ->required()
            ->allow_extra_args(false);
    for (CLI::App *each : {search, merge}) {
        each->add_option("--max-loss", options->max_loss,
                         "The most frames per second that any game may lose")
            ->check(CLI::Range(0.0, 240.0))
            ->capture_default_str();
        each->add_option("--max-changes", options->max_changes,
                         "How often caps may move in a minute of any game; 0: as often as they do")
            ->capture_default_str();
        each->add_flag("--all-games", options->all_games,
                       "Judge games whose work is not known too");
    }
    search->add_option("--samples", options->samples, "How many sets to try at most")
        ->check(CLI::Range(1, 1000000))
        ->capture_default_str();
    search->add_option("--draw-seed", options->draw_seed, "Seed of the sets that are drawn")
        ->capture_default_str();
    search->add_option("--shard", options->shard, "K/N: try every Nth set, starting with the Kth")
        ->capture_default_str();
    search->add_option("--out", options->out,
                       "Write the plays of each set to this file, a line each; a file of the same "
                       "search is continued");
    merge->add_option("FILE", given->files, "A file that a search has written with --out")
        ->required();
    CLI::App *table =
        lab->add_subcommand("table", "Write the daemon's source table with these figures");
    table->add_option("--out", given->out, "The source file to write")->required();
    lab_add_set_option(table, given);
    return {search, merge, vary, table};
}

}  // namespace

void add_lab_commands(CLI::App *app, command_context *context) {
    auto given = std::make_shared<lab_arguments>();
    given->search.setup.jobs = static_cast<int>(std::max(std::thread::hardware_concurrency(), 1u));
    CLI::App *lab =
        app->add_subcommand("lab", "Play games against the simulated daemon, in closed loop")
            ->group("Lab");
    lab_add_model_options(lab, given.get());
    lab_add_set_option(lab, given.get());
    lab->add_option("--record", given->search.setup.record,
                    "Write one recording per game to this directory");
    lab->require_subcommand(0, 1);
    const lab_subcommands below = add_subcommands(lab, given.get());
    const fit_subcommands twin = add_fit_commands(lab, given.get());
    std::string shared;
    for (const CLI::Option *option : command_line_shared(below.search))
        shared += (shared.empty() ? "" : ", ") + option->get_name();
    below.search->footer("The options of dvxctl lab apply too: " + shared + ".");
    for (CLI::App *each : {below.vary, twin.plan, twin.fit})
        each->footer("The options of dvxctl lab apply too.");
    below.merge->footer(
        "It takes the options of the search from the first file, and refuses files of another.");
    lab->callback([=] {
        lab_arguments *all = given.get();
        if (below.search->parsed())
            context->exit_code = run_prepared(all, search_command);
        else if (below.vary->parsed())
            context->exit_code = run_prepared(all, vary_command);
        else if (below.merge->parsed())
            context->exit_code = run_merge(all);
        else if (twin.plan->parsed())
            context->exit_code = twin.run_plan();
        else if (twin.fit->parsed())
            context->exit_code = twin.run_fit();
        else if (below.table->parsed())
            context->exit_code = write_table(all);
        else
            context->exit_code = run_lab(all);
    });
}
