// SPDX-License-Identifier: Apache-2.0
#include "lumo/foundation/system.h"

#include <QCoreApplication>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <thread>

namespace lumo::system {

namespace {

QString& chosenDirectory()
{
    static QString directory;
    return directory;
}

} // namespace

int noLogicalCPUs()
{
    return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

int installedRAMGB()
{
    constexpr double kGiB = 1024.0 * 1024.0 * 1024.0;
    const double bytes =
        static_cast<double>(sysconf(_SC_PHYS_PAGES)) * static_cast<double>(sysconf(_SC_PAGESIZE));
    return std::max(1, static_cast<int>(std::lround(bytes / kGiB)));
}

QString applicationDirectory()
{
    const QString& chosen = chosenDirectory();
    return chosen.isEmpty() ? QCoreApplication::applicationDirPath() : chosen;
}

void setApplicationDirectory(const QString& directory)
{
    chosenDirectory() = directory;
}

} // namespace lumo::system
