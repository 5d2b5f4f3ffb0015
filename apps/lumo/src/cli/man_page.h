// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace lumo::program {

/// The manual page (section 1) of the program and all its commands, in roff with
/// the man macros.
[[nodiscard]] std::string manPage(const CLI::App& app, const std::string& version);

} // namespace lumo::program
