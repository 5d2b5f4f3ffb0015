// SPDX-License-Identifier: Apache-2.0
#include "cli/command_tree.h"

#include "cli/help_format.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <sstream>

namespace lumo::program {

std::vector<const CLI::App*> commandsOf(const CLI::App& command)
{
    return command.get_subcommands([](const CLI::App* sub) { return !sub->get_name().empty(); });
}

std::vector<const CLI::Option*> positionalsOf(const CLI::App& command)
{
    return command.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

std::vector<const CLI::Option*> optionsOf(const CLI::App& command)
{
    return command.get_options([](const CLI::Option* option) { return option->nonpositional(); });
}

std::vector<std::string> namesOf(const CLI::Option& option)
{
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames()) {
        names.push_back('-' + name);
    }
    for (const std::string& name : option.get_lnames()) {
        names.push_back("--" + name);
    }
    return names;
}

ValueChoice choiceOf(const CLI::Option& option)
{
    constexpr std::array kTyped{"N", "R", "NAME", "SERIAL"}; // nothing to choose from
    ValueChoice choice;
    std::istringstream parts(valueName(option));
    for (std::string part; std::getline(parts, part, '|');) {
        if (std::islower(static_cast<unsigned char>(part.front())) != 0) {
            choice.words.push_back(part);
        } else if (part == "DIR") {
            choice.paths = ValueChoice::Paths::Folders;
        } else if (std::find(kTyped.begin(), kTyped.end(), part) == kTyped.end()) {
            choice.paths = ValueChoice::Paths::Files;
        }
    }
    return choice;
}

} // namespace lumo::program
