#include "tools/commands/man_page.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

#include "tools/base/exit_status.h"
#include "tools/commands/command_line.h"

namespace {

// A text as mdoc takes it: no line of it is a request, and no word of it an escape.
std::string plain(const std::string &text) {
    std::string said;
    for (const char c : text) {
        if (c == '\\')
            said += "\\e";
        else if ((c == '.' || c == '\'') && (said.empty() || said.back() == '\n'))
            said.append("\\&").append(1, c);
        else
            said += c;
    }
    return said;
}

// Lines of sentences, each from a line's beginning and none too long for mandoc's taste.
std::string sentence(const std::string &text) {
    constexpr size_t longest = 78;
    std::string said;
    size_t line = 0;
    std::istringstream words(text.empty() || text.ends_with('.') ? text : text + ".");
    for (std::string word; words >> word;) {
        const bool begins = said.empty() || said.ends_with(".") || line + word.size() >= longest;
        if (!said.empty())
            said += begins ? '\n' : ' ';
        line = (begins ? 0 : line + 1) + word.size();
        said += word;
    }
    return plain(said) + "\n";
}

std::string path_of(const CLI::App *command) {
    const CLI::App *parent = command->get_parent();
    return parent == nullptr ? "" : path_of(parent) + ".Cm " + command->get_name() + "\n";
}

// What stands behind an option: its value's name, without the set that it must be of.
std::string value_of(const CLI::Option *option) {
    const std::string type = option->get_type_name();
    return type.substr(0, type.find_first_of(":[ "));
}

std::string name_option(const CLI::Option *option) {
    if (option->get_positional())
        return ".Ar " + option->get_name() + "\n";
    std::string names;
    for (const std::string &name : option->get_snames())
        names += (names.empty() ? "Fl " : " , Fl ") + name;
    for (const std::string &name : option->get_lnames())
        names += (names.empty() ? "Fl -" : " , Fl -") + name;
    if (!value_of(option).empty())
        names += " Ar " + value_of(option);
    return "." + names + "\n";
}

std::vector<const CLI::Option *> options_of(const CLI::App *command) {
    std::vector<const CLI::Option *> options;
    for (const CLI::Option *option : command->get_options())
        if (!option->get_group().empty())
            options.push_back(option);
    return options;
}

std::string synopsis(const CLI::App *command) {
    std::string text = ".Sh SYNOPSIS\n.Nm dvxctl\n" + path_of(command);
    for (const CLI::Option *option : options_of(command)) {
        const std::string name = name_option(option).substr(1);
        text += option->get_required() ? "." + name : ".Op " + name;
        if (option->get_items_expected_max() > 1 && option->get_positional())
            text.insert(text.size() - 1, " ...");
    }
    return command_line_below(command).empty() ? text : text + ".Ar COMMAND ...\n";
}

std::string list_options(const CLI::App *command) {
    const std::vector<const CLI::Option *> options = options_of(command);
    if (options.empty())
        return "";
    std::string text = ".Bl -tag -width Ds\n";
    for (const CLI::Option *option : options) {
        text += ".It " + name_option(option).substr(1) + sentence(option->get_description());
        const std::string type = option->get_type_name();
        if (type.find_first_of(":[{") != std::string::npos)
            text += sentence("It is " + type.substr(type.find_first_of(":[{") +
                                                    (type.find(':') != std::string::npos ? 1 : 0)));
        if (!option->get_default_str().empty())
            text += sentence("Where nothing is said: " + option->get_default_str());
        if (!option->get_envname().empty())
            text += "Else\n.Ev " + option->get_envname() + "\nsays it.\n";
    }
    return text + ".El\n";
}

std::string footer_of(const CLI::App *command) {
    return command->get_footer().empty() ? "" : ".Pp\n" + sentence(command->get_footer());
}

std::string list_commands(const CLI::App *command) {
    const std::vector<const CLI::App *> commands = command_line_below(command);
    if (commands.empty())
        return "";
    std::string text = ".Sh COMMANDS\n.Bl -tag -width Ds\n";
    for (const CLI::App *each : commands)
        text += ".It Xr " + man_page_name(each) + " 1\n" + sentence(each->get_description());
    return text + ".El\n";
}

std::string list_exit_meanings() {
    std::string text = ".Sh EXIT STATUS\n.Bl -tag -width Ds\n";
    for (const exit_meaning &each : exit_meanings)
        text += ".It " + std::to_string(each.status) + "\n" + sentence(each.words);
    return text + ".El\n";
}

std::string see_also(const CLI::App *command) {
    std::string text = ".Sh SEE ALSO\n";
    if (command->get_parent() != nullptr)
        text += ".Xr " + man_page_name(command->get_parent()) + " 1 ,\n";
    return text + ".Xr dvx-recording 5 ,\n.Xr dvx-scenario 5 ,\n.Xr dvxd 8\n";
}

}  // namespace

std::string man_page_name(const CLI::App *command) {
    const CLI::App *parent = command->get_parent();
    return parent == nullptr ? "dvxctl" : man_page_name(parent) + "-" + command->get_name();
}

std::string man_page(const CLI::App *command, const std::string &date) {
    const std::string name = man_page_name(command);
    std::string title = name;
    std::transform(title.begin(), title.end(), title.begin(), toupper);
    std::string summary = command->get_description();
    if (summary.ends_with('.'))
        summary.pop_back();
    return ".Dd " + date + "\n.Dt " + title + " 1\n.Os\n.Sh NAME\n.Nm " + name + "\n.Nd " +
           plain(summary) + "\n" + synopsis(command) + ".Sh DESCRIPTION\n" +
           sentence(command->get_description()) + list_options(command) + footer_of(command) +
           list_commands(command) + list_exit_meanings() + see_also(command);
}
