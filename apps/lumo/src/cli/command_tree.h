// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace lumo::program {

/// The parts of a command, in the order in which help shows them.
[[nodiscard]] std::vector<const CLI::App*> commandsOf(const CLI::App& command);
[[nodiscard]] std::vector<const CLI::Option*> positionalsOf(const CLI::App& command);
[[nodiscard]] std::vector<const CLI::Option*> optionsOf(const CLI::App& command);

/// The option's names with their dashes, the short ones first.
[[nodiscard]] std::vector<std::string> namesOf(const CLI::Option& option);

/// The words and paths that a value accepts, read from its name ("auto|none|FILE").
struct ValueChoice
{
    enum class Paths { None, Files, Folders };
    std::vector<std::string> words; ///< the parts in lower case
    Paths paths = Paths::None;
};
[[nodiscard]] ValueChoice choiceOf(const CLI::Option& option);

} // namespace lumo::program
