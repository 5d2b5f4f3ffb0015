// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "show/output.h"

#include <functional>

namespace CLI {
class App;
}

namespace lumo::program {

/// The parsed command line.
struct Request
{
    /// Runs the command; empty if there is none to run.
    std::function<ExitCode()> run;
    int verbosity = 0;           ///< number of -v
    ExitCode exitCode = AllDone; ///< if `run` is empty: after help, or wrong usage
};

/// Parses the command line; prints help, version and errors.
[[nodiscard]] Request parseCommandLine(int argc, char** argv);

/// Calls `show` with the definitions of all commands and options, for help in other
/// forms.
void showCommandLine(const std::function<void(const CLI::App&)>& show);

} // namespace lumo::program
