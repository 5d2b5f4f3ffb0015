// SPDX-License-Identifier: Apache-2.0
#include "lumo/exif/camera_from_exif.h"
#include "lumo/exif/read_exif.h"

#include <QDir>
#include <QFile>
#include <QStringList>
#include <gtest/gtest.h>

namespace lumo::exif {
namespace {

QDir sharedImages()
{
    const QString given = QString::fromLocal8Bit(qgetenv("LUMO_SHARED_DIR"));
    const QString shared = given.isEmpty() ? QStringLiteral(LUMO_SOURCE_DIR "/../shared") : given;
    return QDir(shared + QStringLiteral("/images"));
}

/// One line's fields; quotes keep commas.
QStringList csvFields(const QString& line)
{
    QStringList fields = {QString()};
    bool quoted = false;
    for (const QChar character : line) {
        if (character == QLatin1Char('"')) {
            quoted = !quoted;
        } else if (character == QLatin1Char(',') && !quoted) {
            fields.append(QString());
        } else {
            fields.back() += character;
        }
    }
    return fields;
}

TEST(RealImages, AreReadAsTheirIndexSays)
{
    const QDir folder = sharedImages();
    QFile index(folder.filePath(QStringLiteral("INDEX.csv")));
    if (!index.open(QIODevice::ReadOnly)) {
        GTEST_SKIP() << "no real images beside the source tree";
    }
    const QStringList lines = QString::fromUtf8(index.readAll()).split(QLatin1Char('\n'));
    int images = 0;
    for (const QString& line : lines.mid(1)) {
        const QStringList fields = csvFields(line);
        if (fields.size() < 10 || fields[0].endsWith(QLatin1String(".json"))) {
            continue;
        }
        SCOPED_TRACE(qPrintable(fields[0]));
        ++images;
        ExifInfo exif;
        QString error;
        ASSERT_TRUE(readExif(folder.filePath(fields[0]), exif, error)) << qPrintable(error);
        EXPECT_EQ(exif.make, fields[1]);
        EXPECT_EQ(exif.model, fields[2]);
        EXPECT_EQ(exif.lensModel, fields[3]);
        EXPECT_EQ(exif.serialNumber, fields[4]);
        EXPECT_NEAR(exif.focalLengthMm, fields[5].toDouble(), 1e-6);
        EXPECT_EQ(exif.focalLength35Mm, fields[6].toDouble());
        EXPECT_EQ(exif.imageWidth, fields[7].toULong());
        EXPECT_EQ(exif.imageHeight, fields[8].toULong());
        const QString bands = fields[9].isEmpty() ? QStringLiteral("Red|Green|Blue") : fields[9];
        EXPECT_EQ(exif.bands.names().join(QLatin1Char('|')), bands);
    }
    EXPECT_GT(images, 60);
}

} // namespace
} // namespace lumo::exif
