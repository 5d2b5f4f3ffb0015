// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/foundation/export.h"

#include <cstdint>

/// The processors and the memory that this process may use, and what limits them.
namespace lumo::system {

/// The source of a limit.
enum class LimitSource {
    Host,     ///< the machine itself
    Affinity, ///< the process is bound to some processors (taskset, cpuset)
    Cgroup,   ///< a control group of the process or one above it, such as a container's
};

/// A number of logical processors and the source of that number.
struct CpuLimit
{
    int cpus = 1;
    LimitSource source = LimitSource::Host;
};

/// An amount of memory and its source.
struct MemoryLimit
{
    std::uint64_t bytes = 0;
    LimitSource source = LimitSource::Host; ///< Host or Cgroup
};

/// The logical processors for this process, at least 1: the smallest of the machine's
/// number, the number it is bound to, and the processor time that control groups
/// (version 1 and 2) grant. If two are equal, the first in this order is the source.
/// A fraction of processor time counts as a whole processor (1.5 gives 2), so that all
/// of the time can be used.
///
/// Asks the system at each call; may be called from any thread. A control group whose
/// files cannot be read sets no limit; one whose files cannot be parsed is also logged
/// as a warning.
[[nodiscard]] LUMO_FOUNDATION_EXPORT CpuLimit cpuLimit();

/// The memory for this process: the machine's, or less if control groups (version 1
/// and 2) limit it. Of version 2 `memory.max` counts, not `memory.high`, which slows
/// a process down but does not end it. Calls, threads and faults as for cpuLimit().
[[nodiscard]] LUMO_FOUNDATION_EXPORT MemoryLimit memoryLimit();

/// The limit in GiB, at least 1. The machine's memory is rounded to the nearest GiB,
/// since the kernel reports less than is installed; a control group's limit is exact
/// and rounded down.
[[nodiscard]] LUMO_FOUNDATION_EXPORT int wholeGB(const MemoryLimit& limit);

} // namespace lumo::system
