// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"
#include "lumo/foundation/resource_manager.h"

namespace lumo {

/// Keeps the operating system from going to sleep while at least one of these lives.
/// A copy counts on its own. Where the system refuses, a warning says so and the work
/// goes on. From any thread; may be destroyed on another one.
class LUMO_CORE_EXPORT ScopedDisablePowerSave : public RecursiveResource
{
public:
    ScopedDisablePowerSave();
    ScopedDisablePowerSave(const ScopedDisablePowerSave& other);
    ScopedDisablePowerSave& operator=(const ScopedDisablePowerSave&) = delete;
    ~ScopedDisablePowerSave() override;
};

} // namespace lumo
