// SPDX-License-Identifier: Apache-2.0
#include "fake_driver.h"

#include "lumo/lumocuda/gxc.h"

#include <cstdlib>

namespace {

constexpr const char* kVariables[] = {
    "FAKE_CUDA_DEVICES", "FAKE_CUDA_REFUSALS", "FAKE_CUDA_VERSION", "FAKE_CUDA_ACTIVE"};

} // namespace

FakeDriver::FakeDriver(const std::vector<FakeDevice>& devices)
{
    std::string text;
    for (const FakeDevice& device : devices) {
        text += device.name + "," + std::to_string(device.bytes) + "," +
                std::to_string(device.clockKHz) + "," + std::to_string(device.kernelTimeLimit) +
                ";";
    }
    setenv("FAKE_CUDA_DEVICES", text.c_str(), 1);
    gxcUseDriverLibrary(FAKE_CUDA);
}

FakeDriver::~FakeDriver()
{
    for (const char* variable : kVariables) {
        unsetenv(variable);
    }
    gxcSetLoggerCallback(nullptr);
    gxcUseDriverLibrary(nullptr);
}

void FakeDriver::refuse(const std::string& function, int code, int device)
{
    m_refusals += function + (device < 0 ? "" : ":" + std::to_string(device)) + "=" +
                  std::to_string(code) + ";";
    setenv("FAKE_CUDA_REFUSALS", m_refusals.c_str(), 1);
}

void FakeDriver::setVersion(int version)
{
    setenv("FAKE_CUDA_VERSION", std::to_string(version).c_str(), 1);
}

void FakeDriver::setActiveDevice(int device)
{
    setenv("FAKE_CUDA_ACTIVE", std::to_string(device).c_str(), 1);
}

std::string FakeDriver::folder()
{
    const std::string library = FAKE_CUDA;
    return library.substr(0, library.rfind('/'));
}

std::string FakeDriver::incompleteLibrary()
{
    return FAKE_CUDA_INCOMPLETE;
}
