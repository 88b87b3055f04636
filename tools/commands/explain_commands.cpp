#include "tools/commands/explain_commands.h"

#include <stdio.h>

#include <CLI/CLI.hpp>
#include <memory>

#include "tools/base/exit_status.h"
#include "tools/base/terminal.h"
#include "tools/device/daemon_process.h"
#include "tools/device/follow.h"
#include "tools/explain/explain_json.h"
#include "tools/explain/history.h"
#include "tools/explain/status.h"
#include "tools/explain/why.h"

namespace {

struct arguments {
    std::string file;
    bool json = false;
};

void print_decision(const decision &made, bool json) {
    if (json)
        printf("%s\n", decision_line(made).c_str());
    else
        print_folded(decision_text(made), decision_indent);
}

// Says what a source's reader has to say of it. False where it is of no use.
bool tell_source(const history_source &source, const std::string &name) {
    if (source.error.empty())
        warn_of(name, source.remarks);
    return source.error.empty();
}

}  // namespace

int why_command(const std::string &path, const std::string &root, bool json) {
    const bool live = path.empty();
    daemon_state state;
    size_t decisions = 0;
    const auto begin = [&](const history_source &source) {
        state = daemon_state_make(source.figures);
    };
    const auto take = [&](const step &taken) {
        for (const decision &made : why_take(&state, taken)) {
            print_decision(made, json);
            ++decisions;
        }
        if (live)
            fflush(stdout);
    };
    if (live && daemon_process(root) == 0)
        return fail_without_daemon(root);
    if (live)
        follow_begin();
    const history_source source =
        live ? history_of_device(root, true, begin, take) : history_of_file(path, begin, take);
    const std::string name = live ? root : path;
    if (!tell_source(source, name))
        return refuse(name + ": " + source.error);
    if (decisions == 0)
        warn(name + ": no decision in it");
    return 0;
}

int status_command(const std::string &root, const std::string &file, bool json) {
    const int daemon = file.empty() ? daemon_process(root) : 0;
    if (file.empty() && daemon == 0) {
        if (json)
            printf("{\"up\":false}\n");
        return fail_without_daemon(root);
    }
    const status known = status_of(root, daemon, file);
    const std::string name = file.empty() ? root : file;
    if (!tell_source(known.source, name))
        return refuse(name + ": " + known.source.error);
    if (json)
        printf("%s\n", status_line(known).c_str());
    else
        status_print(known);
    return 0;
}

void add_explain_commands(CLI::App *parent, command_context *context) {
    auto given = std::make_shared<arguments>();
    CLI::App *why =
        parent
            ->add_subcommand("why", "Tell each decision of a daemon in a sentence, with its cause")
            ->group("Recordings");
    why->add_option("FILE", given->file,
                    "A recording or a log, - for standard input; without it, the daemon on the "
                    "root as it runs");
    why->add_flag("--json", given->json, "Print one JSON object per decision");
    why->callback([=] {
        if (given->file.empty() && context->root.empty())
            throw CLI::RequiredError("FILE, --root or DVXD_ROOT");
        context->exit_code = why_command(given->file, context->root, given->json);
    });
    CLI::App *status =
        parent->add_subcommand("status", "What a daemon does now, as far as it tells")
            ->group("Recordings");
    status->add_option("--log", given->file,
                       "Read a log or a recording instead; - for standard input");
    status->add_flag("--json", given->json, "Print one JSON object");
    status->callback([=] {
        if (given->file.empty() && context->root.empty())
            throw CLI::RequiredError("--log, --root or DVXD_ROOT");
        context->exit_code = status_command(context->root, given->file, given->json);
    });
}
