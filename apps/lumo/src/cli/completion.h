// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace lumo::program {

/// The completion of the command line, for the shells of these names: what a
/// person types after `lumo` is completed to commands, options, and the words,
/// files or folders that a value can be.
[[nodiscard]] std::string bashCompletion(const CLI::App& app);
[[nodiscard]] std::string zshCompletion(const CLI::App& app);

} // namespace lumo::program
