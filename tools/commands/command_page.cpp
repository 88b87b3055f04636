#include "tools/commands/command_page.h"

#include <CLI/CLI.hpp>

#include "tools/base/exit_status.h"
#include "tools/commands/command_line.h"

namespace {

std::string path_of(const CLI::App *command) {
    const CLI::App *parent = command->get_parent();
    return parent == nullptr ? "dvxctl" : path_of(parent) + " " + command->get_name();
}

std::string sentence(const std::string &text) {
    return text.empty() || text.ends_with('.') ? text : text + ".";
}

// A row of a table; a bar in a cell divides nothing.
std::string row_of(const std::string &name, const std::string &text) {
    std::string row = "| " + name + " | ";
    for (const char c : text) {
        if (c == '|')
            row += '\\';
        row += c;
    }
    return row + " |\n";
}

std::string section(const std::string &title, const std::string &rows) {
    return rows.empty() ? "" : "\n## " + title + "\n\n| | |\n|---|---|\n" + rows;
}

// What stands behind an option: its value's name, without the set that it must be of.
std::string value_of(const CLI::Option *option) {
    const std::string type = option->get_type_name();
    return type.substr(0, type.find_first_of(":[ "));
}

std::string name_option(const CLI::Option *option) {
    if (option->get_positional())
        return option->get_name();
    std::string names;
    for (const std::string &name : option->get_snames())
        names += (names.empty() ? "`-" : ", `-") + name + "`";
    for (const std::string &name : option->get_lnames())
        names += (names.empty() ? "`--" : ", `--") + name + "`";
    return value_of(option).empty() ? names : names + " " + value_of(option);
}

// With what it may be, what holds without it, and what else says it.
std::string explain_option(const CLI::Option *option) {
    const std::string type = option->get_type_name();
    const size_t set = type.find_first_of(":[{");
    std::string text = sentence(option->get_description());
    if (set != std::string::npos)
        text += " It is " + type.substr(set + (type[set] == ':' ? 1 : 0)) + ".";
    if (!option->get_default_str().empty())
        text += " Where nothing is said: " + option->get_default_str() + ".";
    return option->get_envname().empty() ? text
                                         : text + " Else " + option->get_envname() + " says it.";
}

}  // namespace

std::string command_page_name(const CLI::App *command) {
    const CLI::App *parent = command->get_parent();
    return parent == nullptr ? "dvxctl" : command_page_name(parent) + "-" + command->get_name();
}

std::string command_page(const CLI::App *command) {
    std::string synopsis = path_of(command) + " [OPTIONS]", options, commands, meanings;
    for (const CLI::Option *option : command->get_options()) {
        if (option->get_group().empty())
            continue;
        options += row_of(name_option(option), explain_option(option));
        if (option->get_positional())
            synopsis +=
                option->get_required() ? " " + option->get_name() : " [" + option->get_name() + "]";
        if (option->get_positional() && option->get_items_expected_max() > 1)
            synopsis += " ...";
    }
    for (const CLI::App *each : command_line_below(command))
        commands += row_of(command_page_name(each) + "(1)", sentence(each->get_description()));
    for (const exit_meaning &each : exit_meanings)
        meanings += row_of(std::to_string(each.status), sentence(each.words));

    std::string page = "# " + command_page_name(command) + "\n\n" +
                       sentence(command->get_description()) + "\n\n## Synopsis\n\n    " + synopsis +
                       (commands.empty() ? "" : " COMMAND ...") + "\n\n## Description\n\n" +
                       sentence(command->get_description()) + "\n";
    if (!command->get_footer().empty())
        page += "\n" + sentence(command->get_footer()) + "\n";
    page += section("Options", options) + section("Commands", commands) +
            section("Exit status", meanings) + "\n## See also\n\n";
    if (command->get_parent() != nullptr)
        page += command_page_name(command->get_parent()) + "(1), ";
    return page + "dvx-recording(5), dvx-scenario(5), dvxd(8)\n";
}
