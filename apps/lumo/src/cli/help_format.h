// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace lumo::program {

/// Formats help: lines of at most 80 columns; the range and the default of a value
/// follow its description. The manual page uses the same texts.
class HelpFormatter : public CLI::Formatter
{
public:
    HelpFormatter();

    /// "-h, --help", or the name of a positional argument.
    [[nodiscard]] std::string make_option_name(
        const CLI::Option* option, bool positional) const override;
    /// The name of the value behind a blank, "" of flags and positional arguments.
    [[nodiscard]] std::string make_option_opts(const CLI::Option* option) const override;
    /// "Assumed share of wrong pairs (0 to 0.99; default: 0.3)".
    [[nodiscard]] std::string make_option_desc(const CLI::Option* option) const override;

    [[nodiscard]] std::string make_option(
        const CLI::Option* option, bool positional) const override;
    [[nodiscard]] std::string make_subcommand(const CLI::App* command) const override;
    [[nodiscard]] std::string make_description(const CLI::App* command) const override;
    [[nodiscard]] std::string make_footer(const CLI::App* command) const override;
};

/// The name of an option's or positional argument's value: "FILE", "N",
/// "auto|none|FILE"; empty for flags.
[[nodiscard]] std::string valueName(const CLI::Option& option);

} // namespace lumo::program
