// SPDX-License-Identifier: Apache-2.0
#include "lumo/exif/camera_from_exif.h"
#include "lumo/exif/read_exif.h"
#include "shared_images.h"

#include <QFile>
#include <QStringList>
#include <gtest/gtest.h>

namespace lumo::exif {
namespace {

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

TEST(RealImages, CarryCalibrationsThatFitTheirSensors)
{
    struct Camera
    {
        const char* files;
        double pixelSizeMm; ///< as published
        LensType lens;
        int count;
        bool inPixels;
    };
    const Camera cameras[] = {
        {"micasense_rededge_*", 0.00375, LensType::Perspective, 11, true},
        {"dji_fc6360_*", 0.003, LensType::Perspective, 12, true},
        {"parrot_sequoia_*.tif", 0.00375, LensType::Fisheye, 4, true},
        {"parrot_sequoia_*.jpg", 0.00134, LensType::Perspective, 1, false}};
    const QDir folder = sharedImages();
    if (!folder.exists()) {
        GTEST_SKIP() << "no real images beside the source tree";
    }
    for (const Camera& c : cameras) {
        const QStringList files = folder.entryList({QLatin1String(c.files)});
        EXPECT_EQ(files.size(), c.count) << c.files;
        for (const QString& file : files) {
            SCOPED_TRACE(qPrintable(file));
            ExifInfo exif;
            CameraData camera;
            QString error;
            ASSERT_TRUE(readExif(folder.filePath(file), exif, error)) << qPrintable(error);
            ASSERT_TRUE(getCamera(exif, camera, nullptr, error)) << qPrintable(error);
            EXPECT_TRUE(camera.params.valid(error, true)) << qPrintable(error);
            EXPECT_EQ(camera.params.lensType, c.lens);
            EXPECT_NE(
                2.0 * camera.params.principalPointPixel()[0], static_cast<double>(exif.imageWidth));
            bool stated = false;
            for (const PixelSizeEvidence& evidence : findPixelSizeEvidence(exif)) {
                EXPECT_EQ(evidence.doubt, QString());
                if (evidence.source == PixelSizeSource::Calibration) {
                    stated = true;
                    EXPECT_NEAR(evidence.pixelSizeMm, c.pixelSizeMm, 0.02 * c.pixelSizeMm);
                }
            }
            EXPECT_EQ(stated, c.inPixels);
        }
    }
}

} // namespace
} // namespace lumo::exif
