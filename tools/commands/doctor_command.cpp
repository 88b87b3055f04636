#include "tools/commands/doctor_command.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "tools/doctor/doctor.h"

void add_doctor_command(CLI::App *parent, command_context *context) {
    struct arguments {
        doctor_options options;
        bool json = false;
    };
    auto given = std::make_shared<arguments>();
    CLI::App *command =
        parent
            ->add_subcommand("doctor",
                             "Look at a device: what is missing, and what that switches off")
            ->group("Recordings");
    command
        ->add_option("--panel", given->options.panel_hz,
                     "The panel's refresh rate, in frames per second")
        ->check(CLI::Range(1.0, 1000.0));
    command
        ->add_option("--wait", given->options.wait_s,
                     "How many seconds each attribute may take to signal")
        ->check(CLI::Range(0.0, 3600.0));
    command->add_flag("--json", given->json, "Print one JSON object");
    command->callback([=] {
        given->options.root = context->root;
        context->exit_code = doctor_command(given->options, given->json);
    });
}
