// SPDX-License-Identifier: Apache-2.0
#include "cuda_driver.h"

#include "lumo/lumocuda/gxc.h"

#include <dlfcn.h>

namespace lumo::cudaDriver {
namespace {

/// Takes functions of a library by name and remembers the first that it lacks.
class Resolver
{
public:
    explicit Resolver(void* library)
        : m_library(library)
    {}

    template <typename Function>
    void take(Function& function, const char* name)
    {
        function = reinterpret_cast<Function>(dlsym(m_library, name));
        if (function == nullptr && m_missing.empty()) {
            m_missing = name;
        }
    }

    /// The first of two names that the library has.
    template <typename Function>
    void take(Function& function, const char* name, const char* olderName)
    {
        take(function, dlsym(m_library, name) != nullptr ? name : olderName);
    }

    [[nodiscard]] const std::string& missing() const { return m_missing; }

private:
    void* m_library;
    std::string m_missing;
};

/// Names with a version are those of interfaces that changed: a name without one
/// is the oldest interface, with other types.
std::string takeFunctions(void* library, Functions& functions)
{
    Resolver resolver(library);
    resolver.take(functions.init, "cuInit");
    resolver.take(functions.getErrorString, "cuGetErrorString");
    resolver.take(functions.deviceGetCount, "cuDeviceGetCount");
    resolver.take(functions.deviceGet, "cuDeviceGet");
    resolver.take(functions.deviceGetName, "cuDeviceGetName");
    resolver.take(functions.deviceTotalMem, "cuDeviceTotalMem_v2");
    resolver.take(functions.deviceGetAttribute, "cuDeviceGetAttribute");
    resolver.take(functions.ctxGetDevice, "cuCtxGetDevice");
    resolver.take(
        functions.devicePrimaryCtxReset, "cuDevicePrimaryCtxReset_v2", "cuDevicePrimaryCtxReset");
    return resolver.missing();
}

std::string versionText(int version)
{
    return std::to_string(version / 1000) + "." + std::to_string(version % 1000 / 10);
}

/// Asked before all else is taken: an old driver is called old rather than
/// incomplete.
Status checkVersion(void* library, Functions& functions)
{
    Resolver resolver(library);
    resolver.take(functions.driverGetVersion, "cuDriverGetVersion");
    if (!resolver.missing().empty()) {
        return {
            GxcStatusMissingFunction,
            "the CUDA driver library has no function " + resolver.missing()};
    }
    int version = 0;
    const Result result = functions.driverGetVersion(&version);
    if (result != kSuccess) {
        return {result, "the CUDA driver does not report its version: " + errorText({}, result)};
    }
    if (version < kOldestVersion) {
        return {
            GxcStatusDriverTooOld, "the CUDA driver is too old: it is for CUDA " +
                                       versionText(version) + ", " + versionText(kOldestVersion) +
                                       " is needed"};
    }
    return {};
}

Status initialise(void* library, Functions& functions)
{
    Status status = checkVersion(library, functions);
    if (status.code != GxcStatusAvailable) {
        return status;
    }
    const std::string missing = takeFunctions(library, functions);
    if (!missing.empty()) {
        return {GxcStatusMissingFunction, "the CUDA driver library has no function " + missing};
    }
    const Result result = functions.init(0);
    if (result == kNoDevice) {
        return {result, "the CUDA driver finds no device"};
    }
    if (result != kSuccess) {
        return {result, "the CUDA driver does not start: " + errorText(functions, result)};
    }
    return {};
}

} // namespace

void CloseLibrary::operator()(void* library) const
{
    dlclose(library);
}

std::string errorText(const Functions& functions, Result result)
{
    const char* text = nullptr;
    if (functions.getErrorString == nullptr ||
        functions.getErrorString(result, &text) != kSuccess || text == nullptr) {
        return "error " + std::to_string(result);
    }
    return std::string(text) + " (error " + std::to_string(result) + ")";
}

Driver openDriver(const std::string& path)
{
    Driver driver;
    driver.library.reset(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL));
    if (driver.library == nullptr) {
        const char* reason = dlerror();
        driver.status = {
            GxcStatusNoLibrary, "the CUDA driver library cannot be opened: " +
                                    std::string(reason != nullptr ? reason : path)};
        return driver;
    }
    driver.status = initialise(driver.library.get(), driver.functions);
    if (driver.status.code != GxcStatusAvailable) {
        driver.functions = {};
        driver.library.reset();
    }
    return driver;
}

} // namespace lumo::cudaDriver
