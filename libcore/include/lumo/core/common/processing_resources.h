// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <bitset>
#include <cstddef>
#include <string>
#include <vector>

namespace lumo {

/// The resources of this machine that processing may use: CPU threads, memory and
/// GPUs. The limits start at what the operating system grants the process (see
/// lumo/foundation/system_limits.h). A GPU starts enabled if its memory suffices
/// (cuda::isDeviceRecommended). Changes of GPU flags reach cuda::setGPUFlags at once.
///
/// There are 64 flags: devices from number 64 on are listed but cannot be enabled.
///
/// instance() may be called from any thread. Only the thread that sets up processing
/// may change values, before processing starts; afterwards any thread may read.
class LUMO_CORE_EXPORT ProcessingResources
{
public:
    /// The one instance of the process. The first call makes it and opens the GPU
    /// driver.
    [[nodiscard]] static ProcessingResources& instance();

    ProcessingResources(const ProcessingResources&) = delete;
    ProcessingResources& operator=(const ProcessingResources&) = delete;

    /// The number of CPU threads.
    [[nodiscard]] int maxCPUs() const;
    /// \throws std::invalid_argument if n < 1
    void setMaxCPUs(int n);

    [[nodiscard]] int maxRamGB() const; ///< in GB of 2^30 bytes
    [[nodiscard]] int maxRamMB() const; ///< in MB of 2^20 bytes
    /// \param n  in GB of 2^30 bytes
    /// \throws std::invalid_argument if n < 1, or if it has no value in MB
    void setMaxRAMGB(int n);

    /// The number of devices that the driver reports.
    [[nodiscard]] std::size_t gpuCount() const;
    /// \throws std::out_of_range if i >= gpuCount()
    [[nodiscard]] std::string gpuName(std::size_t i) const;
    /// Bit i is set if device i is enabled. Bits without a device have the value of
    /// the latest disableAllGpus() or enableAllGpus().
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
