#include "tools/commands/command_line.h"

#include <errno.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <iostream>

#include "client/dvx_client.h"
#include "platform/host/standard_files.h"
#include "tools/base/exit_status.h"
#include "tools/base/words.h"

namespace {

// The command that was being read when the words went wrong.
CLI::App *deepest_command(CLI::App *app) {
    const std::vector<CLI::App *> parsed = app->get_subcommands();
    return parsed.empty() ? app : deepest_command(parsed.front());
}

std::string words_of(const CLI::App *command) {
    std::string words = command->get_name();
    for (const CLI::App *parent = command->get_parent(); parent != nullptr;
         parent = parent->get_parent())
        words.insert(0, parent->get_name() + " ");
    return words;
}

std::string help_of(const CLI::App *command) {
    return "see " + words_of(command) + " --help";
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
            for (const CLI::App *known : command_line_below(command))
                words.push_back(known->get_name());
    }
    return words;
}

void explain_wrong_words(CLI::App *app, const CLI::ParseError &error) {
    CLI::App *command = deepest_command(app);
    const std::vector<std::string> unknown = app->remaining(true);
    if (unknown.empty()) {
        warn(error.what() + ("; " + help_of(command)));
        return;
    }
    const std::string nearest =
        nearest_word(unknown[0], words_known_to(command, unknown[0].starts_with("-")));
    warn("unknown word '" + unknown[0] + "'" +
         (nearest.empty() ? "" : ", did you mean '" + nearest + "'?") + "; " + help_of(command));
}

// Files are mapped while they are read: one that somebody makes shorter meanwhile ends the program.
void end_with_a_cut_file(int) {
    constexpr char said[] = "dvxctl: a file was cut while it was read\n";
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, said, sizeof(said) - 1);
    _exit(exit_input);
}

// The exit status of a program that has said everything; what could not be written is a failure.
int finish(int exit_code) {
    std::cout.flush();
    if (fflush(stdout) == 0 && ferror(stdout) == 0 && std::cout.good())
        return exit_code;
    if (errno != EPIPE)
        warn(std::string("cannot write: ") + strerror(errno));
    return exit_code != 0 ? exit_code : exit_found;
}

}  // namespace

void command_line_build(CLI::App *app, command_context *context,
                        const std::vector<add_commands> &groups) {
    app->name("dvxctl");
    app->description("Talks to dvxd in words, and runs virtual devices for it.");
    app->require_subcommand(1);
    app->get_formatter()->column_width(22);
    app->fallthrough();
    app->set_version_flag("--version", "dvxctl " DVX_VERSION);
    app->add_option("--root", context->root, "Directory of the virtual device")
        ->envname("DVXD_ROOT");
    app->parse_complete_callback([context] {
        if (context->root_is_needed && context->root.empty())
            throw CLI::RequiredError("--root or DVXD_ROOT");
    });
    for (const add_commands add : groups)
        add(app, context);
}

std::vector<const CLI::App *> command_line_below(const CLI::App *command) {
    return command->get_subcommands([](const CLI::App *) { return true; });
}

std::vector<const CLI::Option *> command_line_shared(const CLI::App *command) {
    std::vector<const CLI::Option *> shared;
    for (const CLI::App *above = command->get_parent();
         above != nullptr && above->get_parent() != nullptr; above = above->get_parent())
        for (const CLI::Option *option : above->get_options())
            if (!option->get_positional() && option != above->get_help_ptr())
                shared.push_back(option);
    return shared;
}

void command_line_needs_root(CLI::App *command, command_context *context) {
    command->preparse_callback([context](size_t) { context->root_is_needed = true; });
}

int command_line_run(int argc, char **argv, const std::vector<add_commands> &groups) {
    standard_files_take_up();
    signal(SIGPIPE, SIG_IGN);
    signal(SIGXFSZ, SIG_IGN);  // writing fails, and is said to
    signal(SIGBUS, end_with_a_cut_file);
    command_context context;
    CLI::App app;
    command_line_build(&app, &context, groups);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success &asked) {  // for help or the version
        return finish(app.exit(asked));
    } catch (const CLI::ParseError &error) {
        explain_wrong_words(&app, error);
        return exit_input;
    } catch (const std::exception &error) {
        return fail("internal error in '" + words_of(deepest_command(&app)) + "': " + error.what());
    }
    return finish(context.exit_code);
}
