#include "tools/commands/frame_reading.h"

#include <CLI/CLI.hpp>

#include "tools/base/exit_status.h"

int frame_fail_reading(const std::string &path, const frame_file &file) {
    return refuse(path + ": " + file.error);
}

std::string frame_describe(const frame_file &file) {
    return file.format + (file.column.empty() ? "" : ", column " + file.column) + " in " +
           file.unit + (file.app.empty() ? "" : ", " + file.app);
}

void frame_add_options(CLI::App *command, frame_options *options) {
    command->add_option("--column", options->column,
                        "Column of the intervals, by its name or its number from 1");
    command->add_option("--unit", options->unit, "Unit of the column: us, ms, ns or s")
        ->check(CLI::IsMember({"us", "ms", "ns", "s"}));
    command->add_flag("--difference", options->difference,
                      "The column holds times: take their differences");
    command->add_option("--app", options->app,
                        "Whose frames, where a file mixes several; else of whom there are most");
}
