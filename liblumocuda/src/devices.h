// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "cuda_driver.h"
#include "lumo/lumocuda/gxc.h"

#include <string>
#include <vector>

namespace lumo::cudaDriver {

struct Message
{
    gxcLogLevel level = GxcLogInfo;
    std::string text;
};

/// What the driver told about one device; where it did not, the values stay.
struct DeviceFacts
{
    bool reachable = false; ///< whether `handle` is valid
    Device handle = 0;
    std::string name = "unknown device";
    int nameStatus = GxcStatusAvailable; ///< why the name is unknown
    int clockMHz = 0;
    float memoryMB = 0.0F;
    int kernelTimeLimit = -1; ///< 0, 1, or -1: unknown
};

/// Asks an initialised driver for all devices.
/// \param[in,out] status    set where the driver has no device
/// \param[in,out] messages  what it refused is appended
[[nodiscard]] std::vector<DeviceFacts> readDevices(
    const Functions& functions, Status& status, std::vector<Message>& messages);

/// Destroys the primary contexts of the devices that are reachable.
void resetDevices(
    const Functions& functions, const std::vector<DeviceFacts>& devices,
    std::vector<Message>& messages);

} // namespace lumo::cudaDriver
