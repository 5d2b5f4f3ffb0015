// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

namespace lumo::power {

/// Prevents the operating system from sleeping during its lifetime, which also ends when
/// the process is killed. Each platform has a source file that implements it; this
/// header contains no Qt, so that the Windows file compiles without it.
class SleepInhibitor
{
public:
    SleepInhibitor() = default;
    SleepInhibitor(const SleepInhibitor&) = delete;
    SleepInhibitor& operator=(const SleepInhibitor&) = delete;
    virtual ~SleepInhibitor() = default;
};

/// \param[out] error  if null is returned the reason, in UTF-8, else untouched
[[nodiscard]] std::unique_ptr<SleepInhibitor> inhibitSleep(std::string& error);

} // namespace lumo::power
