// SPDX-License-Identifier: Apache-2.0
#include "lumo/foundation/system.h"

#include "lumo/foundation/system_limits.h"

#include <QCoreApplication>

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
    return cpuLimit().cpus;
}

int installedRAMGB()
{
    return wholeGB(memoryLimit());
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
