// SPDX-License-Identifier: Apache-2.0
#include "interrupt.h"

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
    std::signal(SIGINT, askForStop);
}

} // namespace lumo::program
