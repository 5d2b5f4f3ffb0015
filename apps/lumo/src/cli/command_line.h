// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "show/output.h"

#include <functional>

namespace CLI {
class App;
}

namespace lumo::program {

/// What the command line asks for.
struct Request
{
    /// Runs the command; empty if there is none to run.
    std::function<ExitCode()> run;
    int verbosity = 0;           ///< number of -v
    ExitCode exitCode = AllDone; ///< where there is nothing to run: help, or wrong usage
};

/// Parses the command line; help, version and errors are printed.
[[nodiscard]] Request parseCommandLine(int argc, char** argv);

/// Hands out the definitions of all commands and options, for help in other forms.
void showCommandLine(const std::function<void(const CLI::App&)>& show);

} // namespace lumo::program
