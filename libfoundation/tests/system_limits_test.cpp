// SPDX-License-Identifier: Apache-2.0
#include "cgroup_limits.h"
#include "lumo/foundation/log.h"
#include "lumo/foundation/system.h"
#include "lumo/foundation/system_limits.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>

namespace lumo::system {
namespace {

constexpr std::uint64_t kGiB = 1024 * 1024 * 1024;

/// Files below a made-up root, by path.
using Tree = std::vector<std::pair<const char*, const char*>>;

struct CgroupCase
{
    const char* what;
    Tree tree;
    std::optional<double> cpus;
    std::optional<std::uint64_t> bytes;
};

class Cgroups : public testing::TestWithParam<CgroupCase>
{};

CgroupLimits limitsOf(const Tree& tree)
{
    const QTemporaryDir root;
    for (const auto& [path, content] : tree) {
        QFile file(root.filePath(path));
        EXPECT_TRUE(QDir().mkpath(QFileInfo(file).path()));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    return cgroupLimits(root.path());
}

constexpr const char* kCgroup = "proc/self/cgroup";
constexpr const char* kMounts = "proc/self/mountinfo";
constexpr const char* kUnified =
    "22 1 0:5 / /proc rw - proc proc rw\n"
    "30 23 0:26 / /sys/fs/cgroup rw,nosuid shared:4 - cgroup2 cgroup2 rw,nsdelegate\n";
constexpr const char* kOld =
    "31 23 0:27 / /sys/fs/cgroup/cpu,cpuacct rw shared:9 - cgroup cgroup rw,cpu,cpuacct\n"
    "32 23 0:28 / /sys/fs/cgroup/memory rw - cgroup cgroup rw,memory\n";

} // namespace

TEST_P(Cgroups, TheSmallestLimitOnTheWayUpCounts)
{
    const CgroupLimits limits = limitsOf(GetParam().tree);
    EXPECT_EQ(limits.cpus, GetParam().cpus);
    EXPECT_EQ(limits.bytes, GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(
    SystemLimits, Cgroups,
    testing::Values(
        CgroupCase{"NoProc", {}, {}, {}},
        CgroupCase{
            "UnifiedWithoutLimits",
            {{kCgroup, "0::/user.slice\n"},
             {kMounts, kUnified},
             {"sys/fs/cgroup/user.slice/cpu.max", "max 100000\n"},
             {"sys/fs/cgroup/user.slice/memory.max", "max\n"}},
            {},
            {}},
        CgroupCase{
            "UnifiedWithLimitsAboveAndASiblings",
            {{kCgroup, "0::/a.slice/b:c.scope\n"},
             {kMounts, kUnified},
             {"sys/fs/cgroup/a.slice/b:c.scope/cpu.max", "300000 100000\n"},
             {"sys/fs/cgroup/a.slice/b:c.scope/memory.max", "1073741824\n"},
             {"sys/fs/cgroup/a.slice/cpu.max", "75000 50000\n"},
             {"sys/fs/cgroup/a.slice/memory.max", "8589934592\n"},
             {"sys/fs/cgroup/other/cpu.max", "10000 100000\n"}},
            1.5,
            kGiB},
        CgroupCase{
            "UnifiedInANamespaceOfItsOwn",
            {{kCgroup, "0::/\n"},
             {kMounts, kUnified},
             {"sys/fs/cgroup/cpu.max", "200000 100000\n"},
             {"sys/fs/cgroup/memory.max", "536870912\n"}},
            2.0,
            kGiB / 2},
        CgroupCase{
            "MovedOutOfItsNamespace",
            {{kCgroup, "0::/../other\n"},
             {kMounts, kUnified},
             {"sys/fs/cgroup/cpu.max", "200000 100000\n"},
             {"sys/fs/other/cpu.max", "100000 100000\n"}},
            2.0,
            {}},
        CgroupCase{
            "OldHierarchies",
            {{kCgroup, "5:cpu,cpuacct:/job\n3:memory:/job/7\n1:name=systemd:/\n"},
             {kMounts, kOld},
             {"sys/fs/cgroup/cpu,cpuacct/job/cpu.cfs_quota_us", "250000\n"},
             {"sys/fs/cgroup/cpu,cpuacct/job/cpu.cfs_period_us", "100000\n"},
             {"sys/fs/cgroup/cpu,cpuacct/cpu.cfs_quota_us", "-1\n"},
             {"sys/fs/cgroup/cpu,cpuacct/cpu.cfs_period_us", "100000\n"},
             {"sys/fs/cgroup/memory/job/7/memory.limit_in_bytes", "9223372036854771712\n"},
             {"sys/fs/cgroup/memory/job/memory.limit_in_bytes", "2147483648\n"}},
            2.5,
            2 * kGiB},
        CgroupCase{
            "OldHierarchiesBoundIntoAContainer",
            {{kCgroup, "5:cpu:/docker/1f\n3:memory:/docker/1f\n"},
             {kMounts, "31 23 0:27 /docker/1f /sys/fs/cgroup/my\\040cpu ro - cgroup cgroup rw,cpu\n"
                       "32 23 0:28 /docker/1f /sys/fs/cgroup/memory ro - cgroup cgroup rw,memory\n"
                       "33 23 0:28 /docker/2e /elsewhere rw - cgroup cgroup rw,memory\n"},
             {"sys/fs/cgroup/my cpu/cpu.cfs_quota_us", "50000\n"},
             {"sys/fs/cgroup/my cpu/cpu.cfs_period_us", "100000\n"},
             {"sys/fs/cgroup/memory/memory.limit_in_bytes", "2147483648\n"},
             {"elsewhere/memory.limit_in_bytes", "1073741824\n"}},
            0.5,
            2 * kGiB},
        CgroupCase{
            "BothVersionsAtOnce",
            {{kCgroup, "3:memory:/job\n0::/job\n"},
             {kMounts, "32 23 0:28 / /sys/fs/cgroup/memory rw - cgroup cgroup rw,memory\n"
                       "33 23 0:29 / /sys/fs/cgroup/unified rw - cgroup2 cgroup2 rw\n"},
             {"sys/fs/cgroup/memory/job/memory.limit_in_bytes", "1073741824\n"},
             {"sys/fs/cgroup/unified/job/cpu.max", "100000 100000\n"}},
            1.0,
            kGiB}),
    [](const auto& test) { return test.param.what; });

TEST(SystemLimits, WhatIsNoLimitIsSaidAndLimitsNothing)
{
    for (const char* bad : {"many 100000", "100000", "100000 0", "-5 100000", "1e5 100000"}) {
        const log::Capture capture;
        const CgroupLimits limits =
            limitsOf({{kCgroup, "0::/\n"}, {kMounts, kUnified}, {"sys/fs/cgroup/cpu.max", bad}});
        EXPECT_FALSE(limits.cpus) << bad;
        ASSERT_EQ(capture.records().size(), 1u) << bad;
        EXPECT_TRUE(capture.records().front().text.contains("/cpu.max: \"")) << bad;
    }
}

TEST(SystemLimits, TheFewestProcessorsCountAndTheFirstToSaySo)
{
    const std::tuple<int, int, std::optional<double>, int, LimitSource> cases[] = {
        {8, 8, {}, 8, LimitSource::Host},     {8, 8, 8.0, 8, LimitSource::Host},
        {8, 8, 7.5, 8, LimitSource::Host},    {8, 4, 4.0, 4, LimitSource::Affinity},
        {8, 4, 1.5, 2, LimitSource::Cgroup},  {8, 2, 3.0, 2, LimitSource::Affinity},
        {8, 8, 0.01, 1, LimitSource::Cgroup}, {8, 8, 0.0, 1, LimitSource::Cgroup},
        {-1, -1, {}, 1, LimitSource::Host},   {8, 8, 1e15, 8, LimitSource::Host},
    };
    for (const auto& [host, affinity, cgroup, cpus, source] : cases) {
        const CpuLimit limit = smallestLimit(host, affinity, cgroup);
        EXPECT_EQ(limit.cpus, cpus) << host << ' ' << affinity << ' ' << cgroup.value_or(-1);
        EXPECT_EQ(limit.source, source) << host << ' ' << affinity << ' ' << cgroup.value_or(-1);
    }
}

TEST(SystemLimits, AGroupsMemoryIsNeverRoundedUp)
{
    const std::uint64_t host = 15 * kGiB + kGiB * 2 / 3;
    EXPECT_EQ(wholeGB(smallestLimit(host, {})), 16);
    EXPECT_EQ(wholeGB(smallestLimit(host, host)), 16);
    EXPECT_EQ(wholeGB(smallestLimit(host, 4 * kGiB - 1)), 3);
    EXPECT_EQ(wholeGB(smallestLimit(host, kGiB / 4)), 1);
    EXPECT_EQ(wholeGB(smallestLimit(kGiB / 4, {})), 1);
}

TEST(SystemLimits, MemoryIsAtMostThatOfTheMachine)
{
    QFile file(QStringLiteral("/proc/meminfo"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QRegularExpression total(QStringLiteral("MemTotal:\\s*(\\d+) kB"));
    const auto bytes =
        total.match(QString::fromLatin1(file.readAll())).captured(1).toULongLong() * 1024;
    const MemoryLimit limit = memoryLimit();
    if (limit.source == LimitSource::Host) {
        EXPECT_EQ(limit.bytes, bytes);
        EXPECT_EQ(installedRAMGB(), std::max(1L, std::lround(double(bytes) / double(kGiB))));
    } else {
        EXPECT_LT(limit.bytes, bytes);
    }
}

TEST(SystemLimits, TheProcessorsThatTheProcessIsBoundToLimit)
{
    cpu_set_t before;
    ASSERT_EQ(sched_getaffinity(0, sizeof(before), &before), 0);
    std::size_t first = 0;
    while (!CPU_ISSET(first, &before)) {
        ++first;
    }
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(first, &one);
    ASSERT_EQ(sched_setaffinity(0, sizeof(one), &one), 0);
    const CpuLimit bound = cpuLimit();
    ASSERT_EQ(sched_setaffinity(0, sizeof(before), &before), 0);
    EXPECT_EQ(bound.cpus, 1);
    EXPECT_EQ(noLogicalCPUs(), cpuLimit().cpus);
    if (sysconf(_SC_NPROCESSORS_ONLN) > 1) {
        EXPECT_EQ(bound.source, LimitSource::Affinity);
    }
}

} // namespace lumo::system
