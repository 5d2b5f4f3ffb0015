// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/foundation/system_limits.h"

#include <QString>

#include <optional>

namespace lumo::system {

/// What control groups grant the process; empty: no limit.
struct CgroupLimits
{
    std::optional<double> cpus; ///< processor time per time
    std::optional<std::uint64_t> bytes;
};

/// The smallest limits of the process's own control groups and all above them that
/// can be seen, whichever version holds a controller.
/// \param root  of the tree that holds proc/self and the mount points; "" for the
///              machine's own. For tests.
[[nodiscard]] LUMO_TEST_EXPORT CgroupLimits cgroupLimits(const QString& root);

/// \param hostCpus      of the machine
/// \param affinityCpus  that the process is bound to
[[nodiscard]] LUMO_TEST_EXPORT CpuLimit
smallestLimit(int hostCpus, int affinityCpus, std::optional<double> cgroupCpus);

[[nodiscard]] LUMO_TEST_EXPORT MemoryLimit
smallestLimit(std::uint64_t hostBytes, std::optional<std::uint64_t> cgroupBytes);

} // namespace lumo::system
