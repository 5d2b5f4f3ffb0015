// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// A device that the driver of the tests has.
struct FakeDevice
{
    std::string name; ///< without "," and ";"
    std::uint64_t bytes = 0;
    int clockKHz = 1000000;
    int kernelTimeLimit = 0;
};

constexpr std::uint64_t kMB = 1024 * 1024;

/// While it lives, lumocuda and the programs that a test starts find a driver with
/// these devices instead of the machine's own. One at a time.
class FakeDriver
{
public:
    explicit FakeDriver(const std::vector<FakeDevice>& devices);
    FakeDriver(const FakeDriver&) = delete;
    FakeDriver& operator=(const FakeDriver&) = delete;
    ~FakeDriver();

    /// Lets a function fail with `code`, for all devices or for the one of this
    /// index. Again, for another one. To be called before devices are asked for.
    void refuse(const std::string& function, int code, int device = -1);
    void setVersion(int version);     ///< 1000 * major + 10 * minor
    void setActiveDevice(int device); ///< of the current context

    /// The folder that holds the library under the driver's name.
    [[nodiscard]] static std::string folder();
    /// A driver library without cuDeviceTotalMem_v2.
    [[nodiscard]] static std::string incompleteLibrary();

private:
    std::string m_refusals;
};
