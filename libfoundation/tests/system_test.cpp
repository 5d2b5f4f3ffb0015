// SPDX-License-Identifier: Apache-2.0
#include "lumo/foundation/system.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

namespace lumo::system {

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
