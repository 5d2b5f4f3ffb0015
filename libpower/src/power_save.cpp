// SPDX-License-Identifier: Apache-2.0
#include "lumo/power/power_save.h"

#include "lumo/foundation/log.h"
#include "sleep_inhibitor.h"

#include <mutex>

namespace lumo::system {
namespace {

struct State
{
    std::mutex mutex;
    std::unique_ptr<power::SleepInhibitor> inhibitor;
    std::string loggedReason; ///< of the last refusal; empty after success
};

State& state()
{
    static State instance;
    return instance;
}

} // namespace

void disablePowerSave()
{
    const std::lock_guard lock(state().mutex);
    if (state().inhibitor != nullptr) {
        return;
    }
    std::string reason;
    state().inhibitor = power::inhibitSleep(reason);
    if (state().inhibitor == nullptr && reason != state().loggedReason) {
        log::warning() << "The system may go to sleep during processing:" << reason;
    }
    state().loggedReason = reason;
}

void enablePowerSave()
{
    const std::lock_guard lock(state().mutex);
    state().inhibitor.reset();
}

} // namespace lumo::system
