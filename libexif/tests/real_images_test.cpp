// SPDX-License-Identifier: Apache-2.0
#include "lumo/exif/camera_from_exif.h"
#include "lumo/exif/read_exif.h"
#include "shared_images.h"

#include <QFile>
#include <QHash>
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

/// What the thermal block states beside EXIF, and a lens, which the index leaves out.
const QHash<QString, QPair<QString, QString>> kSerialNumberAndLens = {
    {QStringLiteral("flir_ax8_bd45092.jpg"), {QStringLiteral("71200518"), QStringLiteral("FOL2")}},
    {QStringLiteral("flir_e40_a97cf76.jpg"), {QStringLiteral("49033333"), QStringLiteral("FOL18")}},
    {QStringLiteral("flir_i7_3e217e2.jpg"), {QStringLiteral("470023842"), QStringLiteral("FOL7")}},
    {QStringLiteral("nikon_d5300_c38e469.heic"),
     {QStringLiteral("2567806"), QStringLiteral("18.0-250.0 mm f/3.5-6.3")}}};

void expectAsIndexed(const QDir& folder, const QStringList& fields)
{
    SCOPED_TRACE(qPrintable(fields[0]));
    ExifInfo exif;
    QString error;
    ASSERT_TRUE(readExif(folder.filePath(fields[0]), exif, error)) << qPrintable(error);
    const auto more = kSerialNumberAndLens.value(fields[0], {fields[4], fields[3]});
    EXPECT_EQ(exif.make, fields[1]);
    EXPECT_EQ(exif.model, fields[2]);
    EXPECT_EQ(exif.lensModel, more.second);
    EXPECT_EQ(exif.serialNumber, more.first);
    EXPECT_NEAR(exif.focalLengthMm, fields[5].toDouble(), 1e-6);
    EXPECT_EQ(exif.focalLength35Mm, fields[6].toDouble());
    EXPECT_EQ(exif.imageWidth, fields[7].toULong());
    EXPECT_EQ(exif.imageHeight, fields[8].toULong());
    const QString bands = fields[9].isEmpty() ? QStringLiteral("Red|Green|Blue") : fields[9];
    EXPECT_EQ(exif.bands.names().join(QLatin1Char('|')), bands);
}

TEST(RealImages, AreReadAsTheirIndexSays)
{
    if (!sharedImages().exists()) {
        GTEST_SKIP() << "no real images beside the source tree";
    }
    int images = 0;
    for (const char* name : {"../images", "../images_more"}) {
        const QDir folder(sharedImages().filePath(QLatin1String(name)));
        QFile index(folder.filePath(QStringLiteral("INDEX.csv")));
        ASSERT_TRUE(index.open(QIODevice::ReadOnly)) << name;
        const QStringList lines = QString::fromUtf8(index.readAll()).split(QLatin1Char('\n'));
        for (const QString& line : lines.mid(1)) {
            const QStringList fields = csvFields(line);
            if (fields.size() >= 10 && !fields[0].endsWith(QLatin1String(".json"))) {
                ++images;
                expectAsIndexed(folder, fields);
            }
        }
    }
    EXPECT_GT(images, 70);
}

TEST(RealImages, StateAnglesAndSensorsBesideEXIF)
{
    const QDir folder(sharedImages().filePath(QStringLiteral("../images_more")));
    if (!folder.exists()) {
        GTEST_SKIP() << "no real images beside the source tree";
    }
    ExifInfo thermal;
    ExifInfo panorama;
    ExifInfo olympus;
    QString error;
    ASSERT_TRUE(readExif(folder.filePath(QStringLiteral("flir_i7_3e217e2.jpg")), thermal, error));
    ASSERT_TRUE(
        readExif(folder.filePath(QStringLiteral("samsung_sm-c200_1364096.jpg")), panorama, error));
    ASSERT_TRUE(
        readExif(folder.filePath(QStringLiteral("olympus_x-2-c-50z_b346c56.jpg")), olympus, error));
    ASSERT_TRUE(thermal.fieldOfView);
    EXPECT_NEAR(thermal.fieldOfView->horizontalDeg, 24.986, 1e-3);
    EXPECT_EQ(thermal.thermalWidth, 120U);
    EXPECT_EQ(thermal.thermalHeight, 120U);
    EXPECT_TRUE(panorama.spherical);
    EXPECT_EQ(makeCamera(panorama, 0.001).params.lensType, LensType::Spherical);
    EXPECT_EQ(olympus.sensorDiagonalMm, 8.86);
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
