// dvxctl: talks to dvxd in words, and runs virtual devices for it.

#include <errno.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "core/events.h"
#include "tools/day.h"
#include "tools/delivery.h"
#include "tools/device_commands.h"
#include "tools/exit_status.h"
#include "tools/frames/frames_command.h"
#include "tools/lab/lab.h"
#include "tools/messages.h"
#include "tools/play.h"
#include "tools/replay/record.h"
#include "tools/replay/replay.h"
#include "tools/report/report.h"
#include "tools/watch.h"
#include "tools/why/status.h"
#include "tools/why/why.h"
#include "tools/words.h"

namespace {

// What the words of the command line say, wherever they stand.
struct arguments {
    std::string root;
    payload_words payload;
    std::string client;
    std::string text;
    std::vector<int32_t> values;
    int32_t code = 0;
    std::string time = "virtual";
    bool stay = false;
    bool all = false;
    bool brief = false;
    bool needs_root = false;
    bool json = false;
    bool why = false;
    record_options record;
    replay_options replay;
    report_options report;
    std::string export_out;
};

int send(const dvx_message &message, bool is_text, const std::string &root) {
    const std::string error = deliver_message(message, is_text, root);
    if (error.empty())
        return 0;
    fprintf(stderr, "dvxctl: %s\n", error.c_str());
    return exit_found;
}

int print_events() {
    for (uint32_t id = 0; id < event_count; ++id)
        if (event_name(id) != nullptr)
            printf("%2u  %s\n", id, event_name(id));
    return 0;
}

void add_message_commands(CLI::App *app, arguments *given, int *exit_code) {
    for (const message_word &word : message_words) {
        CLI::App *command = app->add_subcommand(word.word, word.help)->group("Messages");
        payload_add_options(word.payload, command, &given->payload);
        command->callback([&word, given, exit_code] {
            *exit_code = send(make_word_message(word, given->payload),
                              payload_is_text(word.payload), given->root);
        });
    }
    CLI::App *raw = app->add_subcommand("raw", "Any message")->group("Messages");
    raw->add_option("CLIENT", given->client, "Client name, at most 19 characters")
        ->required()
        ->check(at_most(DVX_CLIENT_NAME_SIZE - 1));
    raw->add_option("CODE", given->code, "Message code")->required();
    CLI::Option *values =
        raw->add_option("INT", given->values, "Up to 64 values")->expected(0, DVX_PAYLOAD_VALUES);
    CLI::Option *text = raw->add_option("--text", given->text, "A text, at most 255 characters")
                            ->excludes(values)
                            ->check(at_most(DVX_PAYLOAD_SIZE - 1));
    raw->callback([=] {
        const bool is_text = text->count() > 0;
        const char *client = given->client.c_str();
        *exit_code = send(is_text ? make_text_message(client, given->code, given->text)
                                  : make_message(client, given->code, given->values),
                          is_text, given->root);
    });
}

constexpr char virtual_time[] = "virtual";

void add_device_group(CLI::App *app, arguments *given, int *exit_code) {
    CLI::App *device = app->add_subcommand("device", "Virtual devices")->group("Virtual device");
    CLI::App *watch =
        app->add_subcommand("watch", "Follow a device as one timeline")->group("Virtual device");
    CLI::App *day =
        app->add_subcommand("day", "Play a short day on a fresh device")->group("Virtual device");
    app->add_subcommand("events", "Every event with its name")->callback([=] {
        *exit_code = print_events();
    });
    add_device_commands(device, &given->root, exit_code);
    watch->add_flag("--brief", given->brief, "Without start-up's tables and the book-keeping");
    watch->add_flag("--why", given->why, "Each line of the log in words beneath it");
    watch->callback([=] { *exit_code = watch_device(given->root, given->brief, given->why); });
    CLI::App *play =
        app->add_subcommand("play", "Play scenarios and hold what must follow against it")
            ->group("Virtual device");
    play->add_option("FILE", given->text, "Scenarios, as docs/scenarios.md has them")->required();
    play->add_option(
            "--time", given->time,
            "virtual: in the simulator; real, or N times as fast: on a fresh device at the root")
        ->check([](const std::string &text) { return check_speed(text, virtual_time); })
        ->capture_default_str();
    play->add_option("--only", given->client, "The scenario of that name alone");
    play->add_flag("--show", given->all, "Print each line with what followed it");
    play->callback([=] {
        *exit_code = play_file(given->text, given->client, given->root,
                               parse_speed(given->time, virtual_time), given->all);
    });
    day->add_flag("--stay", given->stay, "Leave device and daemon up");
    day->add_flag("--all", given->all, "Show everything that happens, not what changes in effect");
    day->callback([=] { *exit_code = play_day(given->root, given->stay, given->all); });
    for (CLI::App *command : {device, watch, day})
        command->preparse_callback([=](size_t) { given->needs_root = true; });
}

void add_recording_commands(CLI::App *app, arguments *given, int *exit_code) {
    CLI::App *record =
        app->add_subcommand("record", "Record what a daemon takes up and what comes of it")
            ->group("Recordings");
    record->add_option("--out", given->record.out, "The file to write")->required();
    record
        ->add_option("--for", given->record.for_s, "How long, as 90s, 10m or 1h; else until Ctrl-C")
        ->transform(
            CLI::AsNumberWithUnit(std::map<std::string, double>{{"s", 1}, {"m", 60}, {"h", 3600}},
                                  CLI::AsNumberWithUnit::CASE_SENSITIVE));
    record->add_option("--log", given->record.log,
                       "A phone's log, from logcat -v threadtime; - for standard input");
    record->callback([=] {
        given->record.root = given->root;
        *exit_code = record_command(given->record);
    });
    CLI::App *why =
        app->add_subcommand("why", "Tell each decision of a daemon in a sentence, with its cause")
            ->group("Recordings");
    why->add_option("FILE", given->text,
                    "A recording or a log, - for standard input; else the root's daemon, live");
    why->add_flag("--json", given->json, "An object a decision");
    why->callback([=] { *exit_code = why_command(given->text, given->root, given->json); });
    CLI::App *status = app->add_subcommand("status", "What a daemon does now, as far as it tells")
                           ->group("Recordings");
    status->add_option("--log", given->text, "From a log or a recording; - for standard input");
    status->add_flag("--json", given->json, "One object");
    status->callback([=] { *exit_code = status_command(given->root, given->text, given->json); });
    CLI::App *replay =
        app->add_subcommand("replay", "Let the daemon take up a recording once more, simulated")
            ->group("Recordings");
    replay->add_option("FILE", given->text, "A recording; - for standard input")->required();
    replay->add_flag("--compare", given->replay.compare, "Hold what follows against the recording");
    replay
        ->add_option("--set", given->replay.settings, "NAME=VALUE: another figure of the analyser")
        ->allow_extra_args(false);
    replay->add_flag("--why", given->replay.why, "Each decision in a sentence");
    replay->add_flag("--json", given->replay.json, "The figures as one JSON object");
    replay->callback([=] { *exit_code = replay_command(given->text, given->replay); });
    CLI::App *report =
        app->add_subcommand("report", "One page that shows what the daemon did to a game")
            ->group("Recordings");
    report->add_option("FILE", given->report.files, "A recording, or two to compare")
        ->required()
        ->expected(1, 2);
    report->add_option("--out", given->report.out, "The page")->required();
    report
        ->add_option("--set", given->report.settings,
                     "NAME=VALUE: the replay with another figure is the second")
        ->allow_extra_args(false);
    report->callback([=] { *exit_code = report_command(given->report); });
    CLI::App *exported =
        app->add_subcommand("export", "A recording for other programs")->group("Recordings");
    exported->add_option("FILE", given->text, "A recording; - for standard input")->required();
    exported->add_option("--to", given->client, "trace: events for Perfetto; csv: tidy rows")
        ->required()
        ->check(CLI::IsMember({"trace", "csv"}));
    exported->add_option("--out", given->export_out, "The file; else standard output");
    exported->callback(
        [=] { *exit_code = export_command(given->text, given->client, given->export_out); });
}

// The command that was being read when the words went wrong.
CLI::App *deepest_command(CLI::App *app) {
    const std::vector<CLI::App *> parsed = app->get_subcommands();
    return parsed.empty() ? app : deepest_command(parsed.front());
}

std::string help_of(CLI::App *command) {
    std::string words = command->get_name();
    for (const CLI::App *parent = command->get_parent(); parent != nullptr;
         parent = parent->get_parent())
        words.insert(0, parent->get_name() + " ");
    return "see " + words + " --help";
}

// What may stand where an unknown word does: commands, or options behind a dash.
std::vector<std::string> words_known_to(CLI::App *command, bool options) {
    std::vector<std::string> words;
    for (; command != nullptr; command = options ? command->get_parent() : nullptr) {
        if (options)
            for (const CLI::Option *option : command->get_options())
                for (const std::string &name : option->get_lnames())
                    words.push_back("--" + name);
        else
            for (const CLI::App *known : command->get_subcommands([](CLI::App *) { return true; }))
                words.push_back(known->get_name());
    }
    return words;
}

void explain_wrong_words(CLI::App *app, const CLI::ParseError &error) {
    CLI::App *command = deepest_command(app);
    const std::vector<std::string> unknown = app->remaining(true);
    if (unknown.empty()) {
        fprintf(stderr, "dvxctl: %s; %s\n", error.what(), help_of(command).c_str());
        return;
    }
    const std::string nearest =
        nearest_word(unknown[0], words_known_to(command, unknown[0].starts_with("-")));
    fprintf(stderr, "dvxctl: unknown word '%s'%s; %s\n", unknown[0].c_str(),
            nearest.empty() ? "" : (", did you mean '" + nearest + "'?").c_str(),
            help_of(command).c_str());
}

// The exit status of a program that has said everything; what could not be written is a failure.
int finish(int exit_code) {
    std::cout.flush();
    if (fflush(stdout) == 0 && ferror(stdout) == 0 && std::cout.good())
        return exit_code;
    if (errno != EPIPE)
        fprintf(stderr, "dvxctl: cannot write: %s\n", strerror(errno));
    return exit_code != 0 ? exit_code : exit_found;
}

}  // namespace

int main(int argc, char **argv) {
    signal(SIGPIPE, SIG_IGN);
    arguments given;
    int exit_code = 0;
    CLI::App app("Talks to dvxd in words, and runs virtual devices for it.", "dvxctl");
    app.require_subcommand(1);
    app.get_formatter()->column_width(22);
    app.fallthrough();
    app.set_version_flag("--version", "dvxctl " DVX_VERSION);
    app.add_option("--root", given.root, "Directory of the virtual device")->envname("DVXD_ROOT");
    app.parse_complete_callback([&] {
        given.needs_root |= given.time != virtual_time;
        if (given.needs_root && given.root.empty())
            throw CLI::RequiredError("--root or DVXD_ROOT");
    });
    add_message_commands(&app, &given, &exit_code);
    add_device_group(&app, &given, &exit_code);
    add_frames_commands(&app, &exit_code);
    add_recording_commands(&app, &given, &exit_code);
    add_lab_commands(&app, &exit_code);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success &asked) {  // for help or the version
        return finish(app.exit(asked));
    } catch (const CLI::ParseError &error) {
        explain_wrong_words(&app, error);
        return exit_input;
    }
    return finish(exit_code);
}
