// SPDX-License-Identifier: Apache-2.0
#include "lumo/foundation/system_limits.h"

#include "cgroup_limits.h"

#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <limits>
#include <vector>

namespace lumo::system {
namespace {

/// The number of processors that the process's first thread is bound to; `otherwise` if
/// the system refuses to answer.
int affinityCpus(int otherwise)
{
    constexpr std::size_t kMostSets = 1024; // of 1,024 processors each
    for (std::size_t count = 1; count <= kMostSets; count *= 2) {
        std::vector<cpu_set_t> sets(count);
        const std::size_t size = count * sizeof(cpu_set_t);
        if (sched_getaffinity(getpid(), size, sets.data()) == 0) {
            return CPU_COUNT_S(size, sets.data());
        }
        if (errno != EINVAL) { // EINVAL: the set is too small for the machine's processors
            break;
        }
    }
    return otherwise;
}

} // namespace

CpuLimit smallestLimit(int hostCpus, int affinityCpus, std::optional<double> cgroupCpus)
{
    CpuLimit limit{std::max(1, hostCpus), LimitSource::Host};
    if (affinityCpus > 0 && affinityCpus < limit.cpus) {
        limit = {affinityCpus, LimitSource::Affinity};
    }
    if (cgroupCpus && std::ceil(*cgroupCpus) < limit.cpus) {
        limit = {std::max(1, static_cast<int>(std::ceil(*cgroupCpus))), LimitSource::Cgroup};
    }
    return limit;
}

MemoryLimit smallestLimit(std::uint64_t hostBytes, std::optional<std::uint64_t> cgroupBytes)
{
    return cgroupBytes && *cgroupBytes < hostBytes ? MemoryLimit{*cgroupBytes, LimitSource::Cgroup}
                                                   : MemoryLimit{hostBytes, LimitSource::Host};
}

CpuLimit cpuLimit()
{
    const int hostCpus = static_cast<int>(sysconf(_SC_NPROCESSORS_ONLN));
    return smallestLimit(hostCpus, affinityCpus(hostCpus), cgroupLimits(QString()).cpus);
}

MemoryLimit memoryLimit()
{
    const auto hostBytes = static_cast<std::uint64_t>(std::max(0L, sysconf(_SC_PHYS_PAGES))) *
                           static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
    return smallestLimit(hostBytes, cgroupLimits(QString()).bytes);
}

int wholeGB(const MemoryLimit& limit)
{
    constexpr double kGiB = 1024.0 * 1024.0 * 1024.0;
    const double gib = static_cast<double>(limit.bytes) / kGiB;
    const double whole = limit.source == LimitSource::Host ? std::round(gib) : std::floor(gib);
    return static_cast<int>(
        std::clamp(whole, 1.0, static_cast<double>(std::numeric_limits<int>::max())));
}

} // namespace lumo::system
