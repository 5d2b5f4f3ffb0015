// SPDX-License-Identifier: Apache-2.0
// The completion script for zsh.
#include "cli/command_tree.h"
#include "cli/completion.h"
#include "cli/help_format.h"

#include <algorithm>
#include <string_view>

namespace lumo::program {
namespace {

/// Text inside single quotes; the characters that an argument description gives a
/// meaning to are taken literally.
std::string quoted(const std::string& text, const char* special)
{
    std::string result;
    for (const char character : text) {
        if (character == '\'') {
            result += "'\\''";
        } else if (std::string_view(special).find(character) != std::string_view::npos) {
            result += std::string("\\") + character;
        } else {
            result += character;
        }
    }
    return result;
}

std::string functionName(const std::string& path)
{
    std::string result = '_' + path;
    std::replace(result.begin(), result.end(), ' ', '_');
    return result;
}

/// ":NAME:action", the value of an option or an argument.
std::string valueSpec(const CLI::Option& option, const std::string& name)
{
    const ValueChoice choice = choiceOf(option);
    std::string words;
    for (const std::string& word : choice.words) {
        words += ' ' + word;
    }
    std::string action;
    if (choice.paths != ValueChoice::Paths::None) {
        action = choice.paths == ValueChoice::Paths::Folders ? "_files -/" : "_files";
    }
    if (!words.empty()) {
        action = "{compadd --" + words + "; " + action + '}';
    }
    return ':' + quoted(name, ":") + ':' + (action.empty() ? " " : action);
}

std::string optionSpecs(const CLI::App& command)
{
    const HelpFormatter format;
    std::string result;
    for (const CLI::Option* option : optionsOf(command)) {
        const bool again = option->get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll ||
                           option->get_expected_max() > 1;
        const std::string value = valueName(*option);
        const std::vector<std::string> names = namesOf(*option);
        std::string others;
        for (const std::string& name : names) {
            others += (others.empty() ? "" : " ") + name;
        }
        for (const std::string& name : names) {
            const bool equals = !value.empty() && name.compare(0, 2, "--") == 0;
            result += "        '";
            result += again ? "*" : '(' + others + ')';
            result += name + (equals ? "=" : "");
            result += '[' + quoted(format.make_option_desc(option), "[]:") + ']';
            result += (value.empty() ? "" : valueSpec(*option, value)) + "'\n";
        }
    }
    return result;
}

std::string argumentSpecs(const CLI::App& command)
{
    std::string result;
    for (const CLI::Option* argument : positionalsOf(command)) {
        const bool many = argument->get_expected_max() > 1;
        result += std::string("        '") + (many ? "*" : "") +
                  valueSpec(*argument, argument->get_name(true, false)) + "'\n";
    }
    return result;
}

std::string functions(const CLI::App& command, const std::string& path)
{
    const std::vector<const CLI::App*> commands = commandsOf(command);
    std::string result = functionName(path) + "()\n{\n";
    if (commands.empty()) {
        return result + "    local -a specs=(\n" + optionSpecs(command) + argumentSpecs(command) +
               "    )\n    _arguments -s $lumo_common $specs\n}\n\n";
    }
    const bool root = command.get_parent() == nullptr; // its options are those of all
    std::string entries;
    std::string below;
    for (const CLI::App* sub : commands) {
        entries +=
            "            '" + sub->get_name() + ':' + quoted(sub->get_description(), ":") + "'\n";
        below += functions(*sub, path + ' ' + sub->get_name());
    }
    return result + "    local state line curcontext=$curcontext\n    local -a " +
           (root ? "specs=() lumo_common" : "specs") + "=(\n" + optionSpecs(command) +
           "    )\n    _arguments -s -C $lumo_common $specs ':command:->command' "
           "'*::argument:->argument'\n"
           "    case $state in\n    command)\n        local -a commands=(\n" +
           entries +
           "        )\n        _describe command commands ;;\n"
           "    argument) (( $+functions[" +
           functionName(path) + "_$line[1]] )) && " + functionName(path) +
           "_$line[1] ;;\n    esac\n}\n\n" + below;
}

} // namespace

std::string zshCompletion(const CLI::App& app)
{
    return "#compdef lumo\n\n" + functions(app, "lumo") + "_lumo \"$@\"\n";
}

} // namespace lumo::program
