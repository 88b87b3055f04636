#include "tools/commands/completion.h"

#include <CLI/CLI.hpp>
#include <sstream>
#include <vector>

#include "core/events.h"
#include "tools/commands/command_line.h"
#include "tools/doctor/dependencies.h"

namespace {

// The values of a set, as its option's type has them: "TEXT:{on,off}".
std::vector<std::string> values_of(const CLI::Option *option) {
    const std::string type = option->get_type_name();
    const size_t begin = type.find('{'), end = type.find('}');
    std::vector<std::string> values;
    if (begin == std::string::npos || end == std::string::npos)
        return values;
    std::istringstream inside(type.substr(begin + 1, end - begin - 1));
    for (std::string value; std::getline(inside, value, ',');)
        values.push_back(value);
    return values;
}

std::vector<std::string> names_of(const CLI::Option *option) {
    std::vector<std::string> names;
    for (const std::string &name : option->get_lnames())
        names.push_back("--" + name);
    return names;
}

std::string quoted(const std::string &path) {
    return "'" + path + "'";
}

// A branch that prints words, if there are any, and is the last.
std::string case_of(const std::string &path, const std::vector<std::string> &words) {
    std::string line = "        " + quoted(path) + ")";
    if (!words.empty())
        line += " printf '%s\\n'";
    for (const std::string &word : words)
        line += " " + word;
    return line + (words.empty() ? " return ;;\n" : "; return ;;\n");
}

std::string path_of(const CLI::App *command) {
    return command->get_parent() == nullptr
               ? ""
               : path_of(command->get_parent()) + " " + command->get_name();
}

std::vector<const CLI::Option *> options_of(const CLI::App *command) {
    std::vector<const CLI::Option *> options = command->get_options();
    for (const CLI::Option *option : command_line_shared(command))
        options.push_back(option);
    return options;
}

// What may follow a command: its commands, options, and the values of what it takes.
std::vector<std::string> words_behind(const CLI::App *command) {
    std::vector<std::string> words;
    for (const CLI::App *each : command_line_below(command))
        words.push_back(each->get_name());
    for (const CLI::Option *option : options_of(command))
        for (const std::string &word :
             option->get_positional() ? values_of(option) : names_of(option))
            words.push_back(word);
    if (path_of(command) == " events")
        for (uint32_t id = 0; id < event_count; ++id)
            if (event_name(id) != nullptr)
                words.push_back(event_name(id));
    if (path_of(command) == " device prop")
        for (const dependency &thing : dependencies)
            if (thing.kind == dependency_kind::read || thing.kind == dependency_kind::set ||
                thing.kind == dependency_kind::extension)
                words.push_back(thing.name);
    return words;
}

void add_cases(const CLI::App *command, std::string *paths, std::string *words,
               std::string *values) {
    *words += case_of(path_of(command), words_behind(command));
    for (const CLI::Option *option : options_of(command))
        for (const std::string &name : names_of(option))
            if (!option->get_type_name().empty())
                *values += case_of(path_of(command) + " " + name, values_of(option));
    for (const CLI::App *each : command_line_below(command)) {
        *paths += (paths->empty() ? "" : " | ") + quoted(path_of(each));
        add_cases(each, paths, words, values);
    }
}

}  // namespace

std::string completion_function(const CLI::App *app) {
    std::string paths, words, values;
    add_cases(app, &paths, &words, &values);
    return "_dvxctl_words() {\n"
           "    _dvxctl_path= _dvxctl_last=\n"
           "    for _dvxctl_word in \"$@\"; do\n"
           "        _dvxctl_last=$_dvxctl_word\n"
           "        case \"$_dvxctl_path $_dvxctl_word\" in\n"
           "        " +
           paths +
           ") _dvxctl_path=\"$_dvxctl_path $_dvxctl_word\" ;;\n"
           "        esac\n"
           "    done\n"
           "    case \"$_dvxctl_last\" in\n"
           "    --root)\n"
           "        for _dvxctl_word in ./*/hardware.conf /tmp/*/hardware.conf; do\n"
           "            [ -e \"$_dvxctl_word\" ] && printf '%s\\n' \"${_dvxctl_word%/*}\"\n"
           "        done\n"
           "        return ;;\n"
           "    -*)\n"
           "        case \"$_dvxctl_path $_dvxctl_last\" in\n" +
           values +
           "        esac ;;\n"
           "    esac\n"
           "    case \"$_dvxctl_path\" in\n" +
           words +
           "    esac\n"
           "}\n";
}

// Options are offered where a dash begins the word, so that files are where none does.
std::string completion_for_bash(const CLI::App *app) {
    return "# Completion of dvxctl for bash.\n" + completion_function(app) +
           "_dvxctl() {\n"
           "    local words current=${COMP_WORDS[COMP_CWORD]}\n"
           "    words=$(_dvxctl_words \"${COMP_WORDS[@]:1:COMP_CWORD-1}\")\n"
           "    [[ $current == -* ]] || words=$(grep -v '^-' <<<\"$words\")\n"
           "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\")\n"
           "}\n"
           "complete -o default -F _dvxctl dvxctl\n";
}

std::string completion_for_zsh(const CLI::App *app) {
    return "#compdef dvxctl\n# Completion of dvxctl for zsh.\n"
           "setopt local_options no_nomatch\n" +
           completion_function(app) +
           "local -a found\n"
           "found=(${(f)\"$(_dvxctl_words ${words[2,CURRENT-1]})\"})\n"
           "[[ $words[CURRENT] == -* ]] || found=(${found:#-*})\n"
           "if (( ${#found} )); then compadd -- $found; else _files; fi\n";
}
