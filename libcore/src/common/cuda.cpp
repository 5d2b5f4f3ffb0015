// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/common/cuda.h"

#include "lumo/lumocuda/gxc.h"

#include <array>
#include <charconv>

namespace lumo::cuda {
namespace {

// Bytes of the buffers that the GPU library writes its texts to.
constexpr std::size_t kNameSize = 256;
constexpr std::size_t kReasonSize = 1024;

/// The value with the fewest digits that identify it, without exponent.
std::string numberText(float value)
{
    std::array<char, 64> buffer{};
    const auto end = std::to_chars(
        buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed);
    return {buffer.data(), end.ptr};
}

} // namespace

int getDeviceCount()
{
    return gxcGetDeviceCount();
}

std::string getDeviceName(int device)
{
    std::array<char, kNameSize> name{};
    gxcGetDeviceName(device, name.data(), name.size());
    return name.data();
}

int getClockRate(int device)
{
    return gxcGetClockRate(device);
}

float getGlobalMemory(int device)
{
    return gxcGetGlobalMemory(device);
}

bool runTimeLimitOnKernels(int device)
{
    return gxcRunTimeLimitOnKernels(device) > 0;
}

bool gpusAvailableForProcessing()
{
    return gxcGetCudaStatus() == GxcStatusAvailable;
}

std::string unavailableReason()
{
    std::array<char, kReasonSize> reason{};
    gxcGetCudaStatusText(reason.data(), reason.size());
    return reason.data();
}

bool isDeviceRecommended(int device)
{
    return getGlobalMemory(device) >= kRecommendedMemoryMB;
}

bool setGPUFlags(std::size_t flags)
{
    gxcSetGPUFlags(flags);
    return true;
}

void cudaResetAllDevices()
{
    gxcCudaResetAllDevices();
}

void getActiveDeviceString(std::string& text)
{
    const int device = gxcGetActiveDevice();
    if (device >= 0) {
        text = "GPU " + std::to_string(device) + " " + getDeviceName(device);
    }
}

std::string device2string(int device)
{
    if (!gpusAvailableForProcessing()) {
        return {};
    }
    return "Device name: " + getDeviceName(device) +
           " | GPU clock: " + std::to_string(getClockRate(device)) + " MHz " +
           "| Memory: " + numberText(getGlobalMemory(device)) + " MBytes " +
           "| Run time limit on kernels: " + (runTimeLimitOnKernels(device) ? "Yes" : "No");
}

bool isFeatureAvailable()
{
    return true;
}

} // namespace lumo::cuda
