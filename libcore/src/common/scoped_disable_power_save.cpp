// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/common/scoped_disable_power_save.h"

#include "power_save_manager.h"

namespace lumo {

ScopedDisablePowerSave::ScopedDisablePowerSave()
    : RecursiveResource(PowerSaveManager::instance())
{}

ScopedDisablePowerSave::ScopedDisablePowerSave(const ScopedDisablePowerSave& other) = default;
ScopedDisablePowerSave::~ScopedDisablePowerSave() = default;

} // namespace lumo
