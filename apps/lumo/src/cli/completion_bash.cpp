// SPDX-License-Identifier: Apache-2.0
// The completion script for bash.
#include "cli/command_tree.h"
#include "cli/completion.h"

#include <algorithm>

namespace lumo::program {
namespace {

/// The same for every program: it reads what the two functions before it know.
constexpr const char* kComplete = R"(
_lumo()
{
    local current=${COMP_WORDS[COMP_CWORD]} path=lumo option= word i
    local commands options words paths
    for ((i = 1; i < COMP_CWORD; ++i)); do
        word=${COMP_WORDS[i]}
        if [[ -n $option ]]; then
            [[ $word == '=' ]] || option= # "--option=value" comes as three words
        elif [[ $word == -* ]]; then
            _lumo_value "$path" "$word" && option=$word
        else
            _lumo_command "$path"
            [[ " $commands " == *" $word "* ]] && path+=" $word"
        fi
    done
    [[ $current == '=' ]] && current=
    if [[ -n $option ]]; then
        _lumo_value "$path" "$option"
    else
        _lumo_command "$path"
        words=$commands
        [[ $current == -* ]] && words=$options paths=
    fi
    mapfile -t COMPREPLY < <(
        compgen -W "$words" -- "$current"
        [[ $paths == files ]] && compgen -f -- "$current"
        [[ $paths == folders ]] && compgen -d -- "$current"
    )
    [[ -n $paths ]] && compopt -o filenames 2>/dev/null
    return 0
}
complete -F _lumo lumo
)";

std::string joined(const std::vector<std::string>& words)
{
    std::string result;
    for (const std::string& word : words) {
        result += (result.empty() ? "" : " ") + word;
    }
    return result;
}

std::string pathsText(ValueChoice::Paths paths)
{
    switch (paths) {
    case ValueChoice::Paths::Files:
        return "files";
    case ValueChoice::Paths::Folders:
        return "folders";
    case ValueChoice::Paths::None:
        break;
    }
    return {};
}

std::vector<std::string> optionNames(const CLI::App& command)
{
    std::vector<std::string> names;
    for (const CLI::Option* option : optionsOf(command)) {
        const std::vector<std::string> more = namesOf(*option);
        names.insert(names.end(), more.begin(), more.end());
    }
    return names;
}

/// A case for the command and each below it: its commands, options and arguments.
std::string commandCases(const CLI::App& command, const std::string& path)
{
    std::vector<std::string> commands;
    std::string below;
    for (const CLI::App* sub : commandsOf(command)) {
        commands.push_back(sub->get_name());
        below += commandCases(*sub, path + ' ' + sub->get_name());
    }
    std::vector<std::string> options = optionNames(command);
    for (const CLI::App* parent = command.get_parent(); parent; parent = parent->get_parent()) {
        const std::vector<std::string> more = optionNames(*parent);
        options.insert(options.end(), more.begin(), more.end());
    }
    ValueChoice::Paths paths = ValueChoice::Paths::None;
    for (const CLI::Option* argument : positionalsOf(command)) {
        paths = std::max(paths, choiceOf(*argument).paths);
    }
    std::sort(options.begin(), options.end());
    options.erase(std::unique(options.begin(), options.end()), options.end());
    return "    '" + path + "') commands='" + joined(commands) + "' paths=" + pathsText(paths) +
           "\n        options='" + joined(options) + "' ;;\n" + below;
}

/// A case for each option with a value; one of a command serves those below it, too.
std::string valueCases(const CLI::App& command, const std::string& path)
{
    std::string result;
    for (const CLI::Option* option : optionsOf(command)) {
        if (option->get_items_expected_max() == 0) {
            continue;
        }
        const ValueChoice choice = choiceOf(*option);
        for (const std::string& name : namesOf(*option)) {
            result += "    '" + path + "'*' " + name + "') words='" + joined(choice.words) +
                      "' paths=" + pathsText(choice.paths) + " ;;\n";
        }
    }
    for (const CLI::App* sub : commandsOf(command)) {
        result += valueCases(*sub, path + ' ' + sub->get_name());
    }
    return result;
}

} // namespace

std::string bashCompletion(const CLI::App& app)
{
    return "# bash completion for lumo\n\n"
           "# What may follow a command.\n"
           "_lumo_command()\n{\n    commands= options= paths=\n    case $1 in\n" +
           commandCases(app, "lumo") +
           "    esac\n}\n\n"
           "# What the value of a command's option may be; fails for options without one.\n"
           "_lumo_value()\n{\n    words= paths=\n    case \"$1 $2\" in\n" +
           valueCases(app, "lumo") + "    *) return 1 ;;\n    esac\n}\n" + kComplete;
}

} // namespace lumo::program
