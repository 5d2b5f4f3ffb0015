// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <cstddef>
#include <string>

/// The GPUs of this machine, as its CUDA driver reports them. The first function that
/// needs the driver queries it once. Devices are numbered from 0. For a device that
/// does not exist or does not answer, texts are empty or "unknown device" and numbers
/// are 0. All functions may be called from any thread.
namespace lumo::cuda {

/// The number of devices; 0 without a driver.
[[nodiscard]] LUMO_CORE_EXPORT int getDeviceCount();

/// The device's name in the driver, usually its product name.
[[nodiscard]] LUMO_CORE_EXPORT std::string getDeviceName(int device);

/// The device's clock rate in MHz.
[[nodiscard]] LUMO_CORE_EXPORT int getClockRate(int device);

/// The device's memory in MB of 2^20 bytes, never rounded up.
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

/// Sets which devices processing may use: bit i enables device i.
/// \returns true
LUMO_CORE_EXPORT bool setGPUFlags(std::size_t flags);

/// Frees all memory on all devices, for the whole process. Nothing may be running on
/// the devices.
LUMO_CORE_EXPORT void cudaResetAllDevices();

/// \param[out] text  "GPU 0 NAME" for the device of the calling thread's context;
///                   unchanged if it has none
LUMO_CORE_EXPORT void getActiveDeviceString(std::string& text);

/// Describes a device in one line: name, clock rate, memory, kernel time limit. Empty
/// if gpusAvailableForProcessing() is false.
[[nodiscard]] LUMO_CORE_EXPORT std::string device2string(int device);

/// Whether this program was built to use GPUs: true.
[[nodiscard]] LUMO_CORE_EXPORT bool isFeatureAvailable();

} // namespace lumo::cuda
