#include "tools/commands/fit_commands.h"

#include <stdio.h>

#include <CLI/CLI.hpp>
#include <memory>

#include "tools/base/exit_status.h"
#include "tools/base/output_file.h"
#include "tools/base/shown.h"
#include "tools/lab/fit_text.h"
#include "tools/lab/lab_json.h"
#include "tools/lab/run_recording.h"

namespace {

// What both are told beside the lab's own options.
struct fit_arguments {
    lab_arguments *lab;
    double hold_s = 60;
    std::string plan_file;
    std::vector<std::string> powers;
    std::vector<std::string> files;
};

// One place alone: a game is fitted on the phone that it was recorded on.
std::string prepare(const fit_arguments &given, search_place *place) {
    std::string wrong = lab_prepare(given.lab);
    if (!wrong.empty())
        return wrong;
    if (given.lab->search.places.size() > 1)
        return "this is of one device, panel, governor and number of buffers at a time";
    *place = given.lab->search.places[0];
    return {};
}

int run_plan(const fit_arguments &given) {
    search_place place;
    const std::string wrong = prepare(given, &place);
    if (!wrong.empty())
        return refuse(wrong);
    const hold_plan plan = plan_make(place.on.device, given.hold_s);
    if (!plan.error.empty())
        return refuse(plan.error);
    lab_setup setup = given.lab->search.setup;
    std::string unwritten;
    if (!setup.record.empty())
        for (const game_work &game : setup.games)
            if (unwritten.empty())
                unwritten = run_record_alone(setup, game, setup.seed, plan, "");
    const std::string text = plan_text(plan, place.on.device);
    if (unwritten.empty() && !given.lab->out.empty())
        unwritten = output_whole(given.lab->out, text, {given.lab->games_file});
    if (!unwritten.empty())
        return fail("cannot write " + unwritten);
    if (setup.record.empty() && given.lab->out.empty())
        printf("%s", text.c_str());
    return 0;
}

// All that is read, and must not be written over.
std::vector<std::string> read_files(const fit_arguments &given) {
    std::vector<std::string> all = given.files;
    all.insert(all.end(), given.powers.begin(), given.powers.end());
    all.push_back(given.plan_file);
    return all;
}

int run_fit(const fit_arguments &given) {
    search_place place;
    const std::string wrong = prepare(given, &place);
    if (!wrong.empty())
        return refuse(wrong);
    hold_plan plan;
    if (!given.plan_file.empty())
        plan = plan_read(given.plan_file, place.on.device);
    if (!plan.error.empty())
        return refuse(given.plan_file + ": " + plan.error);
    held_frames held;
    if (!given.powers.empty() && given.powers.size() != given.files.size())
        return refuse("as many files with --power as recordings, in their order");
    for (size_t i = 0; i < given.files.size() && held.error.empty(); ++i) {
        held_frames_add(&held, given.files[i], place.on.device, plan);
        if (held.error.empty() && !given.powers.empty())
            held_frames_add_power(&held, given.powers[i]);
    }
    if (!held.error.empty())
        return refuse(held.error);
    held_frames_finish(&held, place.on.panel_hz);
    output_file out;
    if (!given.lab->out.empty())
        out = output_open(given.lab->out, read_files(given));
    if (!out.error.empty())
        return refuse(out.error);
    const fitted_game fitted = fit_game(held, place.on, given.lab->search.setup.varies);
    if (!fitted.error.empty()) {
        output_abandon(&out);
        return refuse(held.game + ": " + fitted.error);
    }
    if (!given.lab->out.empty()) {
        output_write(&out, fit_table(fitted));
        const std::string unwritten = output_finish(&out);
        if (!unwritten.empty())
            return fail("cannot write " + unwritten);
    }
    if (given.lab->search.options.json)
        printf("%s\n", fit_line(fitted, place.on.device).c_str());
    else
        print_fit(fitted, held, place.on.device);
    return 0;
}

}  // namespace

fit_subcommands add_fit_commands(CLI::App *lab, lab_arguments *lab_given) {
    auto given = std::make_shared<fit_arguments>();
    given->lab = lab_given;
    CLI::App *plan = lab->add_subcommand(
        "plan", "Write holds of caps under which a recording tells how much work a game is");
    plan->add_option("--hold", given->hold_s,
                     "How long each pair of caps stands in all, in seconds")
        ->check(CLI::Range(1.0, 3600.0))
        ->capture_default_str();
    plan->add_option("--out", lab_given->out, "Write them to this file");
    CLI::App *fit =
        lab->add_subcommand("fit", "Tell a game's work from recordings under caps that are known");
    fit->add_option("RECORDING", given->files,
                    "Recordings of one game, as dvxctl record makes them")
        ->required();
    fit->add_option("--plan", given->plan_file,
                    "The caps are those of this plan, from the game's first frame on");
    fit->add_option(
           "--power", given->powers,
           "What the phone drew meanwhile: a table of seconds since the game's first frame "
           "and mW; one for each recording")
        ->allow_extra_args(false);
    fit->add_option("--out", lab_given->out, "Write a table of games with this one to this file");
    return {plan, fit, [given] { return run_plan(*given); }, [given] { return run_fit(*given); }};
}
