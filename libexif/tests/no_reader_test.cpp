// SPDX-License-Identifier: Apache-2.0
#include "lumo/exif/read_exif.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

namespace lumo::exif {
namespace {

TEST(ReadExif, SaysThatThereIsNoReader)
{
    ExifInfo exif;
    QString error;
    EXPECT_FALSE(readExif(QCoreApplication::applicationFilePath(), exif, error));
    EXPECT_EQ(error, QStringLiteral("built without a metadata reader"));
}

} // namespace
} // namespace lumo::exif
