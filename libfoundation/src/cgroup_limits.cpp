// SPDX-License-Identifier: Apache-2.0
#include "cgroup_limits.h"

#include "lumo/foundation/log.h"
#include "lumo/foundation/text.h"

#include <QFile>
#include <QHash>
#include <QStringList>

#include <algorithm>
#include <vector>

// File formats: proc(5), cgroups(7), and the kernel's Documentation/admin-guide,
// cgroup-v2.rst, cgroup-v1/memory.rst and scheduler/sched-bwc.rst.

namespace lumo::system {
namespace {

/// One hierarchy of control groups, or a part of it, in the file system.
struct Mount
{
    QString group; ///< the group at the mount point, as /proc/self/cgroup writes groups
    QString point;
    bool unified = false;    ///< version 2
    QStringList controllers; ///< version 1
};

/// The lines of a file; empty if it cannot be read, which sets no limit.
QStringList linesOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return QFile::decodeName(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

/// The kernel writes blanks, tabs, line feeds and backslashes in paths as "\040".
QString unescaped(const QString& path)
{
    constexpr int kOctalDigits = 3;
    QString result;
    for (int i = 0; i < path.size(); ++i) {
        bool ok = false;
        const ushort code = path[i] == QLatin1Char('\\')
                                ? path.mid(i + 1, kOctalDigits).toUShort(&ok, 8)
                                : ushort{0};
        result += ok ? QChar(code) : path[i];
        i += ok ? kOctalDigits : 0;
    }
    return result;
}

/// Lines of mountinfo: "ID PARENT DEV ROOT POINT OPTIONS [TAG...] - TYPE SOURCE SUPER".
std::vector<Mount> cgroupMounts(const QString& root)
{
    constexpr int kFieldsBeforeTags = 6;
    std::vector<Mount> mounts;
    for (const QString& line : linesOf(root + QStringLiteral("/proc/self/mountinfo"))) {
        const QStringList fields = line.split(QLatin1Char(' '));
        const int dash = fields.indexOf(QStringLiteral("-"), kFieldsBeforeTags);
        if (dash < 0 || dash + 3 >= fields.size()) {
            continue;
        }
        const QString& type = fields[dash + 1];
        if (type == QLatin1String("cgroup") || type == QLatin1String("cgroup2")) {
            mounts.push_back(
                {unescaped(fields[3]), root + unescaped(fields[4]),
                 type == QLatin1String("cgroup2"), fields[dash + 3].split(QLatin1Char(','))});
        }
    }
    return mounts;
}

/// The process's group for each controller of version 1, and for "" in version 2.
/// Lines are "NUMBER:CONTROLLERS:GROUP"; the group may contain ":".
QHash<QString, QString> ownGroups(const QString& root)
{
    QHash<QString, QString> groups;
    for (const QString& line : linesOf(root + QStringLiteral("/proc/self/cgroup"))) {
        const QString controllers = line.section(QLatin1Char(':'), 1, 1);
        for (const QString& controller : controllers.split(QLatin1Char(','))) {
            groups[controller] = line.section(QLatin1Char(':'), 2);
        }
    }
    return groups;
}

/// The folders of `group` and of all groups above it, below the mount point.
/// \returns false if the group does not lie below this mount
bool foldersBelow(const Mount& mount, const QString& group, QStringList& folders)
{
    const QString base = mount.group == QLatin1String("/") ? QString() : mount.group;
    const bool outside = group.split(QLatin1Char('/')).contains(QStringLiteral(".."));
    if (outside || !(group + QLatin1Char('/')).startsWith(base + QLatin1Char('/'))) {
        return false;
    }
    QString rest = group.mid(base.size());
    while (!rest.isEmpty() && rest != QLatin1String("/")) {
        folders.append(mount.point + rest);
        rest.truncate(rest.lastIndexOf(QLatin1Char('/')));
    }
    folders.append(mount.point);
    return true;
}

/// A folder of a group and the version of its files.
struct GroupFolder
{
    QString path;
    bool unified = false;
};

/// All folders that may limit the process by a controller. In a namespace the names of
/// groups need not match the mounts; then the mount point is the container's group.
std::vector<GroupFolder> groupFolders(const QString& root, const QString& controller)
{
    const QHash<QString, QString> own = ownGroups(root);
    std::vector<GroupFolder> result;
    std::vector<GroupFolder> unfitting;
    for (const Mount& mount : cgroupMounts(root)) {
        const QString key = mount.unified ? QString() : controller;
        if (!own.contains(key) || (!mount.unified && !mount.controllers.contains(controller))) {
            continue;
        }
        QStringList folders;
        if (!foldersBelow(mount, own[key], folders)) {
            unfitting.push_back({mount.point, mount.unified});
        }
        for (const QString& folder : folders) {
            result.push_back({folder, mount.unified});
        }
    }
    return result.empty() ? unfitting : result;
}

/// Parses a whole number >= `least`; anything else is logged and sets no limit.
std::optional<double> number(const QString& path, const QString& text, double least)
{
    bool ok = false;
    const long long value = text::fromString<long long>(text, &ok);
    if (!ok || static_cast<double>(value) < least) {
        log::warning()
            << QStringLiteral("%1: \"%2\" is not a limit and is ignored").arg(path, text);
        return std::nullopt;
    }
    return static_cast<double>(value);
}

std::optional<double> ratio(
    const QString& path, const QString& quotaText, const QString& periodText)
{
    const std::optional<double> quota = number(path, quotaText, 0);
    const std::optional<double> period = number(path, periodText, 1);
    return quota && period ? std::optional(*quota / *period) : std::nullopt;
}

/// "QUOTA PERIOD", in microseconds; "max" is no limit.
std::optional<double> unifiedCpus(const QString& folder)
{
    const QString path = folder + QStringLiteral("/cpu.max");
    const QString line = linesOf(path).value(0);
    const QString quota = line.section(QLatin1Char(' '), 0, 0);
    if (line.isEmpty() || quota == QLatin1String("max")) {
        return std::nullopt;
    }
    return ratio(path, quota, line.section(QLatin1Char(' '), 1));
}

/// A negative quota is no limit.
std::optional<double> oldCpus(const QString& folder)
{
    const QString path = folder + QStringLiteral("/cpu.cfs_quota_us");
    const QString quota = linesOf(path).value(0);
    if (quota.isEmpty() || quota.startsWith(QLatin1Char('-'))) {
        return std::nullopt;
    }
    return ratio(path, quota, linesOf(folder + QStringLiteral("/cpu.cfs_period_us")).value(0));
}

/// Without a limit, version 1 shows a number beyond any machine's memory: no special case.
std::optional<double> groupBytes(const GroupFolder& folder)
{
    const QString path = folder.path + (folder.unified ? QStringLiteral("/memory.max")
                                                       : QStringLiteral("/memory.limit_in_bytes"));
    const QString line = linesOf(path).value(0);
    if (line.isEmpty() || line == QLatin1String("max")) {
        return std::nullopt;
    }
    return number(path, line, 0);
}

void lower(std::optional<double>& limit, std::optional<double> other)
{
    if (other && (!limit || *other < *limit)) {
        limit = other;
    }
}

} // namespace

CgroupLimits cgroupLimits(const QString& root)
{
    std::optional<double> cpus;
    for (const GroupFolder& folder : groupFolders(root, QStringLiteral("cpu"))) {
        lower(cpus, folder.unified ? unifiedCpus(folder.path) : oldCpus(folder.path));
    }
    std::optional<double> bytes;
    for (const GroupFolder& folder : groupFolders(root, QStringLiteral("memory"))) {
        lower(bytes, groupBytes(folder));
    }
    CgroupLimits limits;
    limits.cpus = cpus;
    if (bytes) {
        limits.bytes = static_cast<std::uint64_t>(*bytes);
    }
    return limits;
}

} // namespace lumo::system
