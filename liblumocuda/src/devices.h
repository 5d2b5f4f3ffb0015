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

/// The properties of one device; those that the driver refuses keep these values.
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
/// \param[in,out] messages  receives a warning for each refused request
[[nodiscard]] std::vector<DeviceFacts> readDevices(
    const Functions& functions, Status& status, std::vector<Message>& messages);

/// Destroys the primary contexts of the devices that are reachable.
void resetDevices(
    const Functions& functions, const std::vector<DeviceFacts>& devices,
    std::vector<Message>& messages);

} // namespace lumo::cudaDriver
