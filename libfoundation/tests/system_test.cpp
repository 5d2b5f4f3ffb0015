// SPDX-License-Identifier: Apache-2.0
#include "lumo/foundation/system.h"

#include <QCoreApplication>
#include <QFile>
#include <QRegularExpression>
#include <gtest/gtest.h>

#include <algorithm>

namespace lumo::system {

TEST(System, MemoryIsThatOfTheMachineInWholeGiB)
{
    QFile file(QStringLiteral("/proc/meminfo"));
    if (!file.open(QIODevice::ReadOnly)) {
        GTEST_SKIP() << "no /proc/meminfo";
    }
    const QRegularExpression total(QStringLiteral("MemTotal:\\s*(\\d+) kB"));
    const double kB = total.match(QString::fromLatin1(file.readAll())).captured(1).toDouble();
    EXPECT_NEAR(installedRAMGB(), std::max(kB / (1024.0 * 1024.0), 1.0), 0.51);
}

TEST(System, ApplicationDirectoryIsTheProgramsUnlessSet)
{
    const QString own = QCoreApplication::applicationDirPath();
    EXPECT_EQ(applicationDirectory(), own);
    setApplicationDirectory(QStringLiteral("/some/where"));
    EXPECT_EQ(applicationDirectory(), QStringLiteral("/some/where"));
    setApplicationDirectory(QString());
    EXPECT_EQ(applicationDirectory(), own);
}

} // namespace lumo::system
