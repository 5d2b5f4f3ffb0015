// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/foundation/resource_manager.h"

namespace lumo {

/// Switches the operating system's power saving off for the first holder and on
/// again after the last.
class PowerSaveManager : public ResourceManager
{
public:
    /// The one manager of the process.
    [[nodiscard]] static PowerSaveManager& instance();

    ~PowerSaveManager() override;

private:
    PowerSaveManager();

    [[nodiscard]] unsigned readState() const override;
    void writeState(unsigned holders) override;
    void onFirstAcquired() override;
    void onLastReleased() override;
};

} // namespace lumo
