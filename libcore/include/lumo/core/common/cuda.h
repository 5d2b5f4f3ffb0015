// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <cstddef>
#include <string>

/// The GPUs of this machine, as its CUDA driver tells them. The driver is asked once,
/// by the first function that needs it. Devices are numbered from 0; of one that does
/// not exist or does not answer, text is empty or "unknown device" and numbers are 0.
/// From any thread.
namespace lumo::cuda {

/// 0 if there is no device or no driver.
[[nodiscard]] LUMO_CORE_EXPORT int getDeviceCount();

/// As the driver names it, such as its product name.
[[nodiscard]] LUMO_CORE_EXPORT std::string getDeviceName(int device);

/// In MHz.
[[nodiscard]] LUMO_CORE_EXPORT int getClockRate(int device);

/// In MB of 2^20 bytes, never rounded up.
[[nodiscard]] LUMO_CORE_EXPORT float getGlobalMemory(int device);

/// Whether the driver ends kernels that run too long.
[[nodiscard]] LUMO_CORE_EXPORT bool runTimeLimitOnKernels(int device);

/// Whether there is a working driver and a device.
[[nodiscard]] LUMO_CORE_EXPORT bool gpusAvailableForProcessing();

/// Why gpusAvailableForProcessing() is false, in words; empty if it is true.
[[nodiscard]] LUMO_CORE_EXPORT std::string unavailableReason();

/// Memory in MB that a device needs to be recommended.
constexpr float kRecommendedMemoryMB = 2000.0F;

/// Whether it has at least kRecommendedMemoryMB.
[[nodiscard]] LUMO_CORE_EXPORT bool isDeviceRecommended(int device);

/// Tells which devices processing may use: bit i stands for device i.
/// \returns true
LUMO_CORE_EXPORT bool setGPUFlags(std::size_t flags);

/// Takes back all memory on all devices, for the whole process: nothing may be
/// running on them.
LUMO_CORE_EXPORT void cudaResetAllDevices();

/// \param[out] text  "GPU 0 NAME" for the device of the calling thread's context;
///                   unchanged if it has none
LUMO_CORE_EXPORT void getActiveDeviceString(std::string& text);

/// A device in one line: name, clock rate, memory, kernel time limit; empty if there
/// is no device to work with.
[[nodiscard]] LUMO_CORE_EXPORT std::string device2string(int device);

/// Whether this program was built to use GPUs: true.
[[nodiscard]] LUMO_CORE_EXPORT bool isFeatureAvailable();

} // namespace lumo::cuda
