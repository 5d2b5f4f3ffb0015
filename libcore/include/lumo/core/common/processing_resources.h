// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <bitset>
#include <cstddef>
#include <string>
#include <vector>

namespace lumo {

/// What processing may use of this machine: CPU threads, memory and GPUs. Limits start
/// at what the process is granted (see lumo/foundation/system_limits.h), GPUs are
/// enabled if their memory suffices (cuda::isDeviceRecommended). Changes of GPU flags
/// are passed on at once to the library that runs on them.
///
/// Flags are 64 bits: of more devices, those from number 64 on are listed but cannot
/// be enabled.
///
/// instance() may be called from any thread. All else is for the thread that sets up
/// processing, before it starts; afterwards any thread may read.
class LUMO_CORE_EXPORT ProcessingResources
{
public:
    /// Made by the first call, which opens the GPU driver.
    [[nodiscard]] static ProcessingResources& instance();

    ProcessingResources(const ProcessingResources&) = delete;
    ProcessingResources& operator=(const ProcessingResources&) = delete;

    /// CPU threads.
    [[nodiscard]] int maxCPUs() const;
    /// \throws std::invalid_argument if n < 1
    void setMaxCPUs(int n);

    [[nodiscard]] int maxRamGB() const; ///< in GB of 2^30 bytes
    [[nodiscard]] int maxRamMB() const; ///< in MB of 2^20 bytes
    /// \param n  in GB of 2^30 bytes
    /// \throws std::invalid_argument if n < 1, or if it has no value in MB
    void setMaxRAMGB(int n);

    /// Devices that the driver has.
    [[nodiscard]] std::size_t gpuCount() const;
    /// \throws std::out_of_range if i >= gpuCount()
    [[nodiscard]] std::string gpuName(std::size_t i) const;
    /// Bit i stands for device i; bits without a device are as they were set last for
    /// all devices.
    [[nodiscard]] std::size_t gpuFlags() const;
    /// \throws std::out_of_range if i >= gpuCount()
    [[nodiscard]] bool gpuEnabled(std::size_t i) const;
    /// \throws std::invalid_argument if i >= gpuCount(), or if a device without a flag
    ///     is to be enabled
    void setGpuEnabled(std::size_t i, bool on);
    [[nodiscard]] bool hasAnyGpuEnabled() const;
    void disableAllGpus();
    void enableAllGpus();

private:
    friend struct ProcessingResourcesMaker; ///< for tests: objects beside the one instance

    ProcessingResources();

    void addGpuName(const std::string& name);
    void passFlagsOn() const;

    int m_maxCPUs;
    int m_maxRamGB;
    std::vector<std::string> m_gpuNames;
    std::bitset<64> m_gpuFlags;
};

} // namespace lumo
