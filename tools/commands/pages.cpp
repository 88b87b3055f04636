// Writes a page for each of dvxctl's commands, and completions, into a folder: pages FOLDER.

#include <CLI/CLI.hpp>
#include <filesystem>
#include <fstream>

#include "tools/commands/command_page.h"
#include "tools/commands/commands.h"
#include "tools/commands/completion.h"

namespace fs = std::filesystem;

namespace {

void write_pages(const CLI::App *command, const fs::path &folder) {
    std::ofstream(folder / (command_page_name(command) + ".md")) << command_page(command);
    for (const CLI::App *each : command_line_below(command))
        write_pages(each, folder);
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 2)
        return 2;
    const fs::path folder = argv[1];
    fs::create_directories(folder);
    command_context context;
    CLI::App app;
    command_line_build(&app, &context, desk_commands);
    write_pages(&app, folder);
    std::ofstream bash(folder / "dvxctl.bash"), zsh(folder / "_dvxctl");
    bash << completion_for_bash(&app);
    zsh << completion_for_zsh(&app);
    return bash.flush().good() && zsh.flush().good() ? 0 : 1;
}
