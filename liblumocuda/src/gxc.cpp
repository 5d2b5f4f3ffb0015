// SPDX-License-Identifier: Apache-2.0
#include "lumo/lumocuda/gxc.h"

#include "devices.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace lumo::cudaDriver;

constexpr const char* kSystemLibrary = "libcuda.so.1";
constexpr std::uint64_t kAllDevices = ~std::uint64_t{0};

/// The driver and its devices, read when they are first needed.
struct Devices
{
    Driver driver;
    std::vector<DeviceFacts> facts;
};

struct State
{
    std::mutex mutex; ///< guards all members below
    std::string libraryPath = kSystemLibrary;
    std::shared_ptr<const Devices> devices; ///< null: not yet read
    std::vector<Message> pending;           ///< messages without a receiver yet
    gxcLogger logger = nullptr;
};

std::atomic<std::uint64_t> gpuFlags{kAllDevices};

/// Never destroyed: the driver library cleans up at exit itself, in an order that closing
/// it among the static objects would disturb.
State& state()
{
    static State& instance = *new State;
    return instance;
}

/// Passes the pending messages to the logger, without the lock: a logger may call this
/// library.
void deliverMessages()
{
    std::unique_lock lock(state().mutex);
    const gxcLogger logger = state().logger;
    if (logger == nullptr) {
        return;
    }
    const std::vector<Message> messages = std::exchange(state().pending, {});
    lock.unlock();
    for (const Message& message : messages) {
        logger(message.level, message.text.c_str());
    }
}

std::shared_ptr<const Devices> openDevices(
    const std::string& libraryPath, std::vector<Message>& messages)
{
    auto devices = std::make_shared<Devices>();
    Driver& driver = devices->driver;
    driver = openDriver(libraryPath);
    if (driver.status.code == GxcStatusAvailable) {
        devices->facts = readDevices(driver.functions, driver.status, messages);
    }
    messages.push_back(
        {GxcLogInfo, devices->facts.empty()
                         ? "No GPU: " + driver.status.text
                         : "GPUs found: " + std::to_string(devices->facts.size())});
    return devices;
}

std::shared_ptr<const Devices> readOnce()
{
    std::shared_ptr<const Devices> devices;
    {
        const std::lock_guard lock(state().mutex);
        if (state().devices != nullptr) {
            return state().devices;
        }
        devices = openDevices(state().libraryPath, state().pending);
        state().devices = devices;
    }
    deliverMessages();
    return devices;
}

/// The properties of a device; those of an unknown device if it does not exist.
DeviceFacts factsOf(int device)
{
    const std::shared_ptr<const Devices> devices = readOnce();
    if (device < 0 || static_cast<std::size_t>(device) >= devices->facts.size()) {
        DeviceFacts none;
        none.name.clear();
        none.nameStatus = GxcStatusInvalidDevice;
        return none;
    }
    return devices->facts[static_cast<std::size_t>(device)];
}

void copyText(const std::string& text, char* buffer, std::size_t size)
{
    if (size > 0) {
        const std::size_t length = std::min(text.size(), size - 1);
        std::memcpy(buffer, text.data(), length);
        buffer[length] = '\0';
    }
}

} // namespace

int gxcGetDeviceCount()
{
    return static_cast<int>(readOnce()->facts.size());
}

int gxcGetDeviceName(int device, char* buffer, size_t size)
{
    const DeviceFacts facts = factsOf(device);
    copyText(facts.name, buffer, size);
    return facts.nameStatus;
}

int gxcGetClockRate(int device)
{
    return factsOf(device).clockMHz;
}

float gxcGetGlobalMemory(int device)
{
    return factsOf(device).memoryMB;
}

int gxcRunTimeLimitOnKernels(int device)
{
    return factsOf(device).kernelTimeLimit;
}

int gxcGetCudaStatus()
{
    return readOnce()->driver.status.code;
}

void gxcGetCudaStatusText(char* buffer, size_t size)
{
    copyText(readOnce()->driver.status.text, buffer, size);
}

void gxcSetGPUFlags(uint64_t flags)
{
    gpuFlags = flags;
}

uint64_t gxcGetGPUFlags()
{
    return gpuFlags;
}

void gxcCudaResetAllDevices()
{
    const std::shared_ptr<const Devices> devices = readOnce();
    std::vector<Message> messages;
    resetDevices(devices->driver.functions, devices->facts, messages);
    {
        const std::lock_guard lock(state().mutex);
        state().pending.insert(state().pending.end(), messages.begin(), messages.end());
    }
    deliverMessages();
}

int gxcGetActiveDevice()
{
    const std::shared_ptr<const Devices> devices = readOnce();
    Device handle = 0;
    if (devices->facts.empty() || devices->driver.functions.ctxGetDevice(&handle) != kSuccess) {
        return -1;
    }
    const auto found = std::find_if(
        devices->facts.begin(), devices->facts.end(),
        [handle](const DeviceFacts& facts) { return facts.reachable && facts.handle == handle; });
    return found == devices->facts.end() ? -1 : static_cast<int>(found - devices->facts.begin());
}

void gxcSetLoggerCallback(gxcLogger logger)
{
    {
        const std::lock_guard lock(state().mutex);
        state().logger = logger;
    }
    deliverMessages();
}

void gxcUseDriverLibrary(const char* path)
{
    const std::lock_guard lock(state().mutex);
    state().libraryPath = path != nullptr ? path : kSystemLibrary;
    state().devices.reset();
    state().pending.clear();
    gpuFlags = kAllDevices;
}
