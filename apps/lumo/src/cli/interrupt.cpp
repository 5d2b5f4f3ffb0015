// SPDX-License-Identifier: Apache-2.0
#include "cli/interrupt.h"

#include "lumo/core/services/core_services.h"
#include "lumo/core/services/progress_status_service.h"

#include <csignal>

namespace lumo::program {
namespace {

/// What it calls sets a lock-free flag: the services exist since before the
/// handler was installed.
void askForStop(int)
{
    serviceProgress().stop();
    std::signal(SIGINT, SIG_DFL);
}

} // namespace

void catchInterrupt()
{
    serviceProgress().start();
    // A job in the background is started so that Ctrl-C does not reach it.
    if (std::signal(SIGINT, askForStop) == SIG_IGN) {
        std::signal(SIGINT, SIG_IGN);
    }
}

} // namespace lumo::program
