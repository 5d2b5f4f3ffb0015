// SPDX-License-Identifier: Apache-2.0
#include "power_save_manager.h"

#include "lumo/foundation/log.h"
#include "lumo/power/power_save.h"

namespace lumo {
namespace {

unsigned holderCount = 0; ///< guarded by the manager

} // namespace

PowerSaveManager& PowerSaveManager::instance()
{
    static PowerSaveManager manager;
    return manager;
}

PowerSaveManager::PowerSaveManager() = default;
PowerSaveManager::~PowerSaveManager() = default;

unsigned PowerSaveManager::readState() const
{
    return holderCount;
}

void PowerSaveManager::writeState(unsigned holders)
{
    holderCount = holders;
}

void PowerSaveManager::onFirstAcquired()
{
    log::info() << "OS Power Save: Disable";
    system::disablePowerSave();
}

void PowerSaveManager::onLastReleased()
{
    log::warning() << "OS Power Save: Enable";
    system::enablePowerSave();
}

} // namespace lumo
