// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace lumo::cudaDriver {

// The binary interface of the CUDA driver, as far as it is used here. Its types are
// plain numbers; numbers and signatures as in the CUDA Driver API reference.

using Result = int; ///< CUresult
using Device = int; ///< CUdevice

constexpr Result kSuccess = 0;
constexpr Result kNoDevice = 100; ///< CUDA_ERROR_NO_DEVICE

constexpr int kClockRateAttribute = 13;         ///< in kHz
constexpr int kKernelExecTimeoutAttribute = 17; ///< 0 or 1

/// 1000 * major + 10 * minor. CUDA 7.0 is the first version with primary contexts
/// that can be reset.
constexpr int kOldestVersion = 7000;

struct Functions
{
    Result (*init)(unsigned flags) = nullptr;
    Result (*driverGetVersion)(int* version) = nullptr;
    Result (*getErrorString)(Result error, const char** text) = nullptr;
    Result (*deviceGetCount)(int* count) = nullptr;
    Result (*deviceGet)(Device* device, int index) = nullptr;
    Result (*deviceGetName)(char* name, int size, Device device) = nullptr;
    Result (*deviceTotalMem)(std::size_t* bytes, Device device) = nullptr;
    Result (*deviceGetAttribute)(int* value, int attribute, Device device) = nullptr;
    Result (*ctxGetDevice)(Device* device) = nullptr;
    Result (*devicePrimaryCtxReset)(Device device) = nullptr;
};

/// Closes a library that dlopen gave.
struct CloseLibrary
{
    void operator()(void* library) const;
};

/// Why there is no driver or no device: a status of gxc.h and the same in words.
struct Status
{
    int code = 0;
    std::string text;
};

/// The driver library, initialised. Empty where that failed.
struct Driver
{
    std::unique_ptr<void, CloseLibrary> library;
    Functions functions;
    Status status;
};

/// Opens and initialises the driver library.
/// \param path  for dlopen
[[nodiscard]] Driver openDriver(const std::string& path);

/// What a driver's result means, with its number; in the driver's own words where
/// it has some.
[[nodiscard]] std::string errorText(const Functions& functions, Result result);

} // namespace lumo::cudaDriver
