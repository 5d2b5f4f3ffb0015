// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/foundation/export.h"

#include <cstdint>

/// What of this machine the process may use, and what says so.
namespace lumo::system {

/// What sets a limit.
enum class LimitSource {
    Host,     ///< what the machine has
    Affinity, ///< the processors that the process is bound to, as by taskset or a cpuset
    Cgroup,   ///< a control group of the process or one above it, as of a container
};

/// A number of logical processors, and what sets it.
struct CpuLimit
{
    int cpus = 1;
    LimitSource source = LimitSource::Host;
};

/// An amount of memory, and what sets it.
struct MemoryLimit
{
    std::uint64_t bytes = 0;
    LimitSource source = LimitSource::Host; ///< Host or Cgroup
};

/// The logical processors for the process: the fewest of those that the machine
/// has, those that the process is bound to, and the processor time that control
/// groups (version 1 and 2) grant. Time for a part of a processor counts as a whole
/// one: 1.5 gives 2, so that all of it can be used. At least 1. Where several give
/// the same number, the first in that order is its source.
///
/// Asks the system at each call, from any thread; a control group that cannot be
/// read sets no limit, one that cannot be understood is logged as a warning.
[[nodiscard]] LUMO_FOUNDATION_EXPORT CpuLimit cpuLimit();

/// The memory for the process: that of the machine, or less if control groups
/// (version 1 and 2; `memory.max`, not `memory.high`) grant less. As cpuLimit().
[[nodiscard]] LUMO_FOUNDATION_EXPORT MemoryLimit memoryLimit();

/// In GiB, at least 1: a machine's rounded to the nearest, since a part of what is
/// installed is not shown; a control group's rounded down, since it is exact.
[[nodiscard]] LUMO_FOUNDATION_EXPORT int wholeGB(const MemoryLimit& limit);

} // namespace lumo::system
