// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/common/processing_resources.h"

#include "lumo/core/common/cuda.h"
#include "lumo/foundation/log.h"
#include "lumo/foundation/system.h"
#include "lumo/lumocuda/gxc.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace lumo {
namespace {

constexpr int kMBPerGB = 1024;

void logGpuMessage(gxcLogLevel level, const char* message)
{
    if (level == GxcLogWarning) {
        log::warning() << message;
    } else {
        log::info() << message;
    }
}

} // namespace

ProcessingResources& ProcessingResources::instance()
{
    static ProcessingResources resources;
    return resources;
}

ProcessingResources::ProcessingResources()
    : m_maxCPUs(system::noLogicalCPUs())
    , m_maxRamGB(system::installedRAMGB())
{
    m_gpuFlags.set(); // bits without a device count as enabled
    // Before the first call that opens the driver, whose messages would else be lost.
    gxcSetLoggerCallback(logGpuMessage);
    const int count = cuda::getDeviceCount();
    for (int i = 0; i < count; ++i) {
        const auto index = static_cast<std::size_t>(i);
        addGpuName(cuda::getDeviceName(i));
        setGpuEnabled(index, index < m_gpuFlags.size() && cuda::isDeviceRecommended(i));
    }
    if (m_gpuNames.size() > m_gpuFlags.size()) {
        log::warning() << "Of" << m_gpuNames.size() << "GPUs only the first" << m_gpuFlags.size()
                       << "can be used";
    }
    passFlagsOn();
}

int ProcessingResources::maxCPUs() const
{
    return m_maxCPUs;
}

void ProcessingResources::setMaxCPUs(int n)
{
    if (n < 1) {
        throw std::invalid_argument("Cannot setMaxCPUs() smaller than 1");
    }
    m_maxCPUs = n;
}

int ProcessingResources::maxRamGB() const
{
    return m_maxRamGB;
}

int ProcessingResources::maxRamMB() const
{
    return m_maxRamGB * kMBPerGB;
}

void ProcessingResources::setMaxRAMGB(int n)
{
    if (n < 1) {
        throw std::invalid_argument("Cannot setMaxRAMGB() smaller than 1");
    }
    // maxRamMB() returns an int.
    constexpr int kMost = std::numeric_limits<int>::max() / kMBPerGB;
    if (n > kMost) {
        throw std::invalid_argument("Cannot setMaxRAMGB() greater than " + std::to_string(kMost));
    }
    m_maxRamGB = n;
}

std::size_t ProcessingResources::gpuCount() const
{
    return m_gpuNames.size();
}

std::string ProcessingResources::gpuName(std::size_t i) const
{
    return m_gpuNames.at(i);
}

std::size_t ProcessingResources::gpuFlags() const
{
    return m_gpuFlags.to_ullong();
}

bool ProcessingResources::gpuEnabled(std::size_t i) const
{
    if (i >= gpuCount()) {
        throw std::out_of_range("gpuEnabled() called with invalid GPU index");
    }
    return i < m_gpuFlags.size() && m_gpuFlags[i];
}

void ProcessingResources::setGpuEnabled(std::size_t i, bool on)
{
    const bool hasFlag = i < m_gpuFlags.size();
    if (i >= gpuCount() || (on && !hasFlag)) {
        throw std::invalid_argument("Cannot turn on GPU with invalid index");
    }
    if (hasFlag) {
        m_gpuFlags[i] = on;
    }
    passFlagsOn();
}

bool ProcessingResources::hasAnyGpuEnabled() const
{
    const std::size_t flagged = std::min(gpuCount(), m_gpuFlags.size());
    for (std::size_t i = 0; i < flagged; ++i) {
        if (m_gpuFlags[i]) {
            return true;
        }
    }
    return false;
}

void ProcessingResources::disableAllGpus()
{
    m_gpuFlags.reset();
    passFlagsOn();
}

void ProcessingResources::enableAllGpus()
{
    m_gpuFlags.set();
    passFlagsOn();
}

void ProcessingResources::addGpuName(const std::string& name)
{
    m_gpuNames.push_back(name);
}

void ProcessingResources::passFlagsOn() const
{
    cuda::setGPUFlags(gpuFlags());
}

} // namespace lumo
