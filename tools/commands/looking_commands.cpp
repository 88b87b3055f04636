#include "tools/commands/looking_commands.h"

#include <stdlib.h>

#include <CLI/CLI.hpp>
#include <map>
#include <memory>

#include "tools/commands/record.h"
#include "tools/doctor/doctor.h"
#include "tools/explain/status.h"
#include "tools/explain/why.h"

namespace {

struct arguments {
    record_options record;
    doctor_options doctor;
    std::string file;
    bool json = false;
};

}  // namespace

void add_looking_commands(CLI::App *parent, const std::string *root, int *exit_code) {
    auto given = std::make_shared<arguments>();
    CLI::App *record =
        parent->add_subcommand("record", "Record what a daemon takes up and what comes of it")
            ->group("Recordings");
    record->add_option("--out", given->record.out, "The file to write")->required();
    record
        ->add_option("--for", given->record.for_s, "How long, as 90s, 10m or 1h; else until Ctrl-C")
        ->transform(
            CLI::AsNumberWithUnit(std::map<std::string, double>{{"s", 1}, {"m", 60}, {"h", 3600}},
                                  CLI::AsNumberWithUnit::CASE_SENSITIVE))
        ->check([](const std::string &text) {
            return strtod(text.c_str(), nullptr) > 0 ? "" : "it is to be longer than nothing";
        });
    record->add_option("--log", given->record.log,
                       "A phone's log, from logcat -v threadtime; - for standard input");
    record->callback([=] {
        given->record.root = *root;
        *exit_code = record_command(given->record);
    });
    CLI::App *why =
        parent
            ->add_subcommand("why", "Tell each decision of a daemon in a sentence, with its cause")
            ->group("Recordings");
    why->add_option("FILE", given->file,
                    "A recording or a log, - for standard input; else the root's daemon, live");
    why->add_flag("--json", given->json, "An object a decision");
    why->callback([=] {
        if (given->file.empty() && root->empty())
            throw CLI::RequiredError("FILE, --root or DVXD_ROOT");
        *exit_code = why_command(given->file, *root, given->json);
    });
    CLI::App *status =
        parent->add_subcommand("status", "What a daemon does now, as far as it tells")
            ->group("Recordings");
    status->add_option("--log", given->file, "From a log or a recording; - for standard input");
    status->add_flag("--json", given->json, "One object");
    status->callback([=] {
        if (given->file.empty() && root->empty())
            throw CLI::RequiredError("--log, --root or DVXD_ROOT");
        *exit_code = status_command(*root, given->file, given->json);
    });
    CLI::App *doctor =
        parent
            ->add_subcommand("doctor",
                             "Look at a device: what is missing, and what that switches off")
            ->group("Recordings");
    doctor->add_option("--panel", given->doctor.panel_hz, "The panel's rate, frames per second")
        ->check(CLI::Range(1.0, 1000.0));
    doctor
        ->add_option("--wait", given->doctor.wait_s,
                     "How many seconds each attribute may take to signal")
        ->check(CLI::Range(0.0, 3600.0));
    doctor->add_flag("--json", given->json, "One object");
    doctor->callback([=] {
        given->doctor.root = *root;
        *exit_code = doctor_command(given->doctor, given->json);
    });
}
