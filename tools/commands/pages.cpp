// Writes dvxctl's manual pages and completions into a folder: pages FOLDER DATE.

#include <CLI/CLI.hpp>
#include <filesystem>
#include <fstream>

#include "tools/commands/commands.h"
#include "tools/commands/completion.h"
#include "tools/commands/man_page.h"

namespace fs = std::filesystem;

namespace {

void write_pages(const CLI::App *command, const fs::path &folder, const std::string &date) {
    std::ofstream(folder / (man_page_name(command) + ".1")) << man_page(command, date);
    for (const CLI::App *each : command_line_below(command))
        write_pages(each, folder, date);
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 3)
        return 2;
    const fs::path folder = argv[1];
    fs::create_directories(folder);
    command_context context;
    CLI::App app;
    command_line_build(&app, &context, desk_commands);
    write_pages(&app, folder, argv[2]);
    std::ofstream bash(folder / "dvxctl.bash"), zsh(folder / "_dvxctl");
    bash << completion_for_bash(&app);
    zsh << completion_for_zsh(&app);
    return bash.flush().good() && zsh.flush().good() ? 0 : 1;
}
