// SPDX-License-Identifier: Apache-2.0
// A driver library of made-up devices, told by environment variables:
//   FAKE_CUDA_DEVICES   "NAME,BYTES,KHZ,LIMITED;" for each device
//   FAKE_CUDA_REFUSALS  "FUNCTION=CODE;" or "FUNCTION:DEVICE=CODE;" for each
//   FAKE_CUDA_VERSION   of the driver, FAKE_CUDA_ACTIVE  device of the context
//   FAKE_CUDA_TRACE     a file to which what happens is appended
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

namespace {

/// Handles are other numbers than indices, so that none is taken for the other.
constexpr int kFirstHandle = 1000;
constexpr int kInvalidContext = 201;

std::string variable(const char* name)
{
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

std::vector<std::string> split(const std::string& text, char separator)
{
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) {
        parts.push_back(part);
    }
    return parts;
}

std::vector<std::string> device(int handle)
{
    const auto devices = split(variable("FAKE_CUDA_DEVICES"), ';');
    return split(devices.at(static_cast<std::size_t>(handle - kFirstHandle)), ',');
}

/// The code with which `function` is to fail for a device, else 0.
int refusal(const std::string& function, int handle = kFirstHandle - 1)
{
    const std::string ofDevice = function + ":" + std::to_string(handle - kFirstHandle);
    for (const std::string& rule : split(variable("FAKE_CUDA_REFUSALS"), ';')) {
        const auto parts = split(rule, '=');
        if (parts.at(0) == function || parts.at(0) == ofDevice) {
            return std::stoi(parts.at(1));
        }
    }
    return 0;
}

void trace(const std::string& what)
{
    if (std::FILE* file = std::fopen(variable("FAKE_CUDA_TRACE").c_str(), "a")) {
        std::fputs((what + "\n").c_str(), file);
        std::fclose(file);
    }
}

__attribute__((constructor)) void opened()
{
    trace("opened");
}

} // namespace

extern "C" {

int cuInit(unsigned /*flags*/)
{
    return refusal("cuInit");
}

int cuDriverGetVersion(int* version)
{
    const std::string text = variable("FAKE_CUDA_VERSION");
    *version = text.empty() ? 12040 : std::stoi(text);
    return refusal("cuDriverGetVersion");
}

int cuGetErrorString(int error, const char** text)
{
    *text = "made-up fault";
    return error == 999 ? 1 : 0; // one code that the driver itself does not know
}

int cuDeviceGetCount(int* count)
{
    *count = static_cast<int>(split(variable("FAKE_CUDA_DEVICES"), ';').size());
    return refusal("cuDeviceGetCount");
}

int cuDeviceGet(int* handle, int index)
{
    *handle = kFirstHandle + index;
    return refusal("cuDeviceGet", *handle);
}

int cuDeviceGetName(char* name, int size, int handle)
{
    std::snprintf(name, static_cast<std::size_t>(size), "%s", device(handle).at(0).c_str());
    return refusal("cuDeviceGetName", handle);
}

#ifndef FAKE_CUDA_INCOMPLETE
int cuDeviceTotalMem_v2(std::size_t* bytes, int handle)
{
    *bytes = std::stoull(device(handle).at(1));
    return refusal("cuDeviceTotalMem_v2", handle);
}
#endif

int cuDeviceGetAttribute(int* value, int attribute, int handle)
{
    *value = std::stoi(device(handle).at(attribute == 13 ? 2 : 3));
    return attribute == 13 || attribute == 17 ? refusal("cuDeviceGetAttribute", handle) : 1;
}

int cuCtxGetDevice(int* handle)
{
    const std::string active = variable("FAKE_CUDA_ACTIVE");
    *handle = active.empty() ? 0 : kFirstHandle + std::stoi(active);
    return active.empty() ? kInvalidContext : 0;
}

int cuDevicePrimaryCtxReset(int handle)
{
    trace("reset " + std::to_string(handle - kFirstHandle));
    return refusal("cuDevicePrimaryCtxReset", handle);
}

} // extern "C"
