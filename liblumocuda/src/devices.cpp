// SPDX-License-Identifier: Apache-2.0
#include "devices.h"

#include <algorithm>
#include <array>

namespace lumo::cudaDriver {
namespace {

constexpr std::size_t kBytesPerKB = 1024;
constexpr float kKBPerMB = 1024.0F;

/// Asks the driver about one device and notes what it refuses.
class DeviceReader
{
public:
    DeviceReader(const Functions& functions, int index, std::vector<Message>& messages)
        : m_functions(functions)
        , m_index(index)
        , m_messages(messages)
    {}

    [[nodiscard]] DeviceFacts read()
    {
        DeviceFacts facts;
        facts.nameStatus = m_functions.deviceGet(&facts.handle, m_index);
        facts.reachable = succeeded(facts.nameStatus, "cannot be used");
        if (facts.reachable) {
            readName(facts);
            readMemory(facts);
            readAttributes(facts);
        }
        return facts;
    }

private:
    bool succeeded(Result result, const char* consequence)
    {
        if (result != kSuccess) {
            m_messages.push_back(
                {GxcLogWarning, "GPU " + std::to_string(m_index) + " " + consequence + ": " +
                                    errorText(m_functions, result)});
        }
        return result == kSuccess;
    }

    void readName(DeviceFacts& facts)
    {
        std::array<char, 256> name{};
        const int room = static_cast<int>(name.size()) - 1; // a zero stays behind it
        facts.nameStatus = m_functions.deviceGetName(name.data(), room, facts.handle);
        if (succeeded(facts.nameStatus, "does not report its name")) {
            facts.name = name.data();
        }
    }

    void readMemory(DeviceFacts& facts)
    {
        std::size_t bytes = 0;
        if (succeeded(
                m_functions.deviceTotalMem(&bytes, facts.handle), "does not report its memory")) {
            const std::size_t wholeKB = bytes / kBytesPerKB;
            facts.memoryMB = static_cast<float>(wholeKB) / kKBPerMB;
        }
    }

    void readAttributes(DeviceFacts& facts)
    {
        int clockKHz = 0;
        if (succeeded(
                m_functions.deviceGetAttribute(&clockKHz, kClockRateAttribute, facts.handle),
                "does not report its clock rate")) {
            facts.clockMHz = clockKHz / 1000;
        }
        int limited = 0;
        if (succeeded(
                m_functions.deviceGetAttribute(&limited, kKernelExecTimeoutAttribute, facts.handle),
                "does not report whether kernels are limited in time")) {
            facts.kernelTimeLimit = limited != 0 ? 1 : 0;
        }
    }

    const Functions& m_functions;
    int m_index;
    std::vector<Message>& m_messages;
};

} // namespace

std::vector<DeviceFacts> readDevices(
    const Functions& functions, Status& status, std::vector<Message>& messages)
{
    int count = 0;
    const Result result = functions.deviceGetCount(&count);
    if (result != kSuccess) {
        status = {
            result, "the CUDA driver does not report its devices: " + errorText(functions, result)};
        return {};
    }
    if (count <= 0) {
        status = {kNoDevice, "the CUDA driver finds no device"};
        return {};
    }
    std::vector<DeviceFacts> devices;
    devices.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        devices.push_back(DeviceReader(functions, i, messages).read());
    }
    return devices;
}

void resetDevices(
    const Functions& functions, const std::vector<DeviceFacts>& devices,
    std::vector<Message>& messages)
{
    for (std::size_t i = 0; i < devices.size(); ++i) {
        if (!devices[i].reachable) {
            continue;
        }
        const Result result = functions.devicePrimaryCtxReset(devices[i].handle);
        if (result != kSuccess) {
            messages.push_back(
                {GxcLogWarning,
                 "GPU " + std::to_string(i) + " cannot be reset: " + errorText(functions, result)});
        }
    }
}

} // namespace lumo::cudaDriver
