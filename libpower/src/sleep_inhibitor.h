// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

namespace lumo::power {

/// Keeps the operating system from sleeping while it lives; a process that is killed
/// keeps it no longer. A source file per platform implements it, without Qt in what
/// it shows.
class SleepInhibitor
{
public:
    SleepInhibitor() = default;
    SleepInhibitor(const SleepInhibitor&) = delete;
    SleepInhibitor& operator=(const SleepInhibitor&) = delete;
    virtual ~SleepInhibitor() = default;
};

/// \param[out] error  why the system refuses, in UTF-8, where null is returned
[[nodiscard]] std::unique_ptr<SleepInhibitor> inhibitSleep(std::string& error);

} // namespace lumo::power
