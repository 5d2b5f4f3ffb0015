// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/foundation/system_limits.h"

#include <QString>

#include <optional>

namespace lumo::system {

/// The limits that control groups set for the process; unset: no limit.
struct CgroupLimits
{
    std::optional<double>
        cpus; ///< processor time per elapsed time: 1.5 is one and a half processors
    std::optional<std::uint64_t> bytes;
};

/// The smallest limits of the process's control groups and of all visible groups above
/// them, in version 1 and 2.
/// \param root  folder with proc/self and the mount points; "" for the machine's own,
///              else for tests
[[nodiscard]] LUMO_TEST_EXPORT CgroupLimits cgroupLimits(const QString& root);

/// The rule of cpuLimit().
/// \param hostCpus      processors of the machine
/// \param affinityCpus  processors that the process is bound to; 0 if unknown
[[nodiscard]] LUMO_TEST_EXPORT CpuLimit
smallestLimit(int hostCpus, int affinityCpus, std::optional<double> cgroupCpus);

/// The rule of memoryLimit().
[[nodiscard]] LUMO_TEST_EXPORT MemoryLimit
smallestLimit(std::uint64_t hostBytes, std::optional<std::uint64_t> cgroupBytes);

} // namespace lumo::system
