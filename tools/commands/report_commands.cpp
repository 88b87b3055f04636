#include "tools/commands/report_commands.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "tools/report/export.h"
#include "tools/report/report.h"

namespace {

struct arguments {
    report_options report;
    std::string file;
    std::string format;
    std::string out;
};

}  // namespace

void add_report_commands(CLI::App *parent, command_context *context) {
    auto given = std::make_shared<arguments>();
    CLI::App *report =
        parent->add_subcommand("report", "One page that shows what the daemon did to a game")
            ->group("Recordings");
    report->add_option("FILE", given->report.files, "A recording, or two to compare")
        ->required()
        ->expected(1, 2);
    report->add_option("--out", given->report.out, "The page to write")->required();
    report
        ->add_option("--set", given->report.settings,
                     "NAME=VALUE: compare with a replay that uses this value for a figure")
        ->allow_extra_args(false);
    report->callback([=] { context->exit_code = report_command(given->report); });
    CLI::App *exported =
        parent->add_subcommand("export", "A recording for other programs")->group("Recordings");
    exported->add_option("FILE", given->file, "A recording; - for standard input")->required();
    exported->add_option("--to", given->format, "trace: events for Perfetto; csv: tidy rows")
        ->required()
        ->check(CLI::IsMember({"trace", "csv"}));
    exported->add_option("--out", given->out, "The file to write; standard output without it");
    exported->callback(
        [=] { context->exit_code = export_command(given->file, given->format, given->out); });
}
