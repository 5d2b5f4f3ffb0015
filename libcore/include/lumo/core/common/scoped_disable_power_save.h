// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"
#include "lumo/foundation/resource_manager.h"

namespace lumo {

/// Keeps the operating system awake while at least one object of this class lives. A
/// copy counts as an object of its own. If the system refuses, a warning is logged and
/// the work goes on. Objects may be made and destroyed on any thread, also on
/// different ones.
class LUMO_CORE_EXPORT ScopedDisablePowerSave : public RecursiveResource
{
public:
    ScopedDisablePowerSave();
    ScopedDisablePowerSave(const ScopedDisablePowerSave& other);
    ScopedDisablePowerSave& operator=(const ScopedDisablePowerSave&) = delete;
    ~ScopedDisablePowerSave() override;
};

} // namespace lumo
