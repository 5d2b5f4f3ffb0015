// SPDX-License-Identifier: Apache-2.0
#include "lumo/exif/camera_from_exif.h"

#include <gtest/gtest.h>

#include <cmath>

namespace lumo::exif {
namespace {

/// A camera that no table knows, 4000 x 3000 pixels of 1.5 um, f = 4 mm.
ExifInfo unlistedCamera()
{
    ExifInfo exif;
    exif.make = QStringLiteral("Nobody");
    exif.model = QStringLiteral("N1");
    exif.focalLengthMm = 4.0;
    exif.imageWidth = 4000;
    exif.imageHeight = 3000;
    exif.focalPlane = FocalPlaneResolution{1.0 / 0.0015, 1.0 / 0.0015};
    return exif;
}

/// A listed one: 7.44 mm x 5.573 mm.
ExifInfo listedCamera(std::size_t width, std::size_t height)
{
    ExifInfo exif = unlistedCamera();
    exif.make = QStringLiteral("Canon");
    exif.model = QStringLiteral("Canon PowerShot G9");
    exif.imageWidth = width;
    exif.imageHeight = height;
    exif.focalPlane.reset();
    return exif;
}

TEST(CameraFromExif, IsAPerspectiveCameraOfTheRecordedSize)
{
    ExifInfo exif = unlistedCamera();
    exif.serialNumber = QStringLiteral("12");
    exif.bands = band::makeRGBBands();
    CameraData camera;
    PixelSizeSource from = PixelSizeSource::None;
    QString error;
    ASSERT_TRUE(getCamera(exif, camera, &from, error)) << qPrintable(error);
    EXPECT_EQ(from, PixelSizeSource::FocalPlane);
    EXPECT_EQ(camera.params.name, QStringLiteral("N1_4.0_4000x3000"));
    EXPECT_EQ(camera.exifId, camera.params.name);
    EXPECT_EQ(camera.params.imageWidth, 4000U);
    EXPECT_NEAR(camera.params.pixelSize, 0.0015, 1e-12);
    EXPECT_NEAR(camera.params.principalPointXMm, 3.0, 1e-9);
    EXPECT_NEAR(camera.params.principalPointYMm, 2.25, 1e-9);
    EXPECT_EQ(camera.params.perspective.focalLengthMm, 4.0);
    EXPECT_EQ(camera.params.source, CameraSource::Exif);
    EXPECT_EQ(camera.bands, exif.bands);
    EXPECT_EQ(camera.serialNumber, QStringLiteral("12"));
    EXPECT_TRUE(camera.params.valid(error, true)) << qPrintable(error);
}

TEST(CameraFromExif, ALensThatCannotBeNamedIsLeftOut)
{
    ExifInfo exif = unlistedCamera();
    exif.lensModel = QString(300, QLatin1Char('x'));
    CameraData camera;
    QString error;
    ASSERT_TRUE(getCamera(exif, camera, nullptr, error)) << qPrintable(error);
    EXPECT_EQ(camera.params.name, QStringLiteral("N1_4.0_4000x3000"));
}

TEST(CameraFromExif, WhatIsMissingIsSaidAndTheCameraIsLeftAlone)
{
    struct Case
    {
        void (*spoil)(ExifInfo&);
        const char* missing;
    };
    const Case cases[] = {
        {[](ExifInfo& e) { e.make = e.model = QString(); }, "camera"},
        {[](ExifInfo& e) { e.model = QString(65536, QLatin1Char('x')); }, "camera"},
        {[](ExifInfo& e) { e.imageHeight = 0; }, "image size"},
        {[](ExifInfo& e) { e.focalLengthMm = 0.0; }, "focal length"},
        {[](ExifInfo& e) { e.focalPlane.reset(); }, "pixel size"}};
    for (const Case& c : cases) {
        ExifInfo exif = unlistedCamera();
        c.spoil(exif);
        CameraData camera;
        camera.serialNumber = QStringLiteral("before");
        const CameraData before = camera;
        QString error;
        EXPECT_FALSE(getCamera(exif, camera, nullptr, error)) << c.missing;
        EXPECT_TRUE(error.contains(QLatin1String(c.missing))) << qPrintable(error);
        EXPECT_EQ(camera, before);
    }
}

TEST(PixelSize, TheTableFitsTheSensorAroundACroppedImage)
{
    struct Case
    {
        std::size_t width;
        std::size_t height;
        double pixelSizeMm;
    };
    const Case cases[] = {
        {4000, 3000, 5.573 / 3000},
        {3000, 4000, 5.573 / 3000},
        {4000, 2250, 7.44 / 4000},
        {3000, 3000, 5.573 / 3000},
        {2560, 1600, 7.44 / 2560}};
    for (const Case& c : cases) {
        const auto evidence = findPixelSizeEvidence(listedCamera(c.width, c.height));
        ASSERT_EQ(evidence.size(), 1U);
        EXPECT_EQ(evidence[0].source, PixelSizeSource::SensorTable);
        EXPECT_NEAR(evidence[0].pixelSizeMm, c.pixelSizeMm, 1e-3 * c.pixelSizeMm);
    }
}

TEST(PixelSize, ImplausibleFocalPlanesAreDoubted)
{
    struct Case
    {
        FocalPlaneResolution resolution; ///< of 4000 x 3000 pixels
        bool believed;
    };
    const Case cases[] = {{{600.0, 620.0}, true},   {{600.0, 640.0}, false},
                          {{2.0, 2.0}, false},      {{58.0, 58.0}, true},
                          {{57.0, 57.0}, false},    {{3900.0, 3900.0}, true},
                          {{4100.0, 4100.0}, false}};
    for (const Case& c : cases) {
        ExifInfo exif = unlistedCamera();
        exif.focalPlane = c.resolution;
        const auto evidence = findPixelSizeEvidence(exif);
        ASSERT_EQ(evidence.size(), 1U);
        EXPECT_EQ(evidence[0].doubt.isEmpty(), c.believed) << c.resolution.x;
    }
}

TEST(PixelSize, ASensorSizeInPlaceOfTheResolutionIsUnderstood)
{
    ExifInfo exif = unlistedCamera();
    exif.imageWidth = 640;
    exif.imageHeight = 512;
    exif.focalPlane = FocalPlaneResolution{10.88, 8.704};
    const auto evidence = findPixelSizeEvidence(exif);
    ASSERT_EQ(evidence.size(), 1U);
    EXPECT_EQ(evidence[0].doubt, QString());
    EXPECT_NEAR(evidence[0].pixelSizeMm, 0.017, 1e-9);
}

TEST(PixelSize, SourcesThatContradictEachOtherAreWeighed)
{
    struct Case
    {
        const char* what;
        ExifInfo exif;
        double planeMm;      ///< 0: no such tag
        double equivalentMm; ///< the pixel size that the 35 mm equivalent yields
        PixelSizeSource believed;
    };
    const double listed = 7.44 / 2000;
    const Case cases[] = {
        {"scaled after the tag was written", listedCamera(2000, 1500), 0.5 * listed, 0.0,
         PixelSizeSource::SensorTable},
        {"the table is alone", listedCamera(2000, 1500), 0.75 * listed, 0.7 * listed,
         PixelSizeSource::FocalPlane},
        {"little difference", listedCamera(2000, 1500), 0.9 * listed, 0.0,
         PixelSizeSource::FocalPlane},
        {"scaled, not in the table", unlistedCamera(), 0.00075, 0.0015, PixelSizeSource::Focal35mm},
        {"coarse equivalent", unlistedCamera(), 0.0015, 0.0020, PixelSizeSource::FocalPlane},
        {"another camera of the product", listedCamera(640, 512), 0.0, 0.014,
         PixelSizeSource::Focal35mm},
        {"square crop", listedCamera(3000, 3000), 0.0, 0.0023, PixelSizeSource::SensorTable}};
    for (const Case& c : cases) {
        ExifInfo exif = c.exif;
        exif.focalPlane.reset();
        if (c.planeMm > 0.0) {
            exif.focalPlane = FocalPlaneResolution{1.0 / c.planeMm, 1.0 / c.planeMm};
        }
        if (c.equivalentMm > 0.0) {
            const double diagonalPixels = std::hypot(exif.imageWidth, exif.imageHeight);
            exif.focalLength35Mm = 43.2666 * exif.focalLengthMm / (c.equivalentMm * diagonalPixels);
        }
        CameraData camera;
        PixelSizeSource from = PixelSizeSource::None;
        QString error;
        ASSERT_TRUE(getCamera(exif, camera, &from, error)) << c.what;
        EXPECT_EQ(from, c.believed) << c.what;
        const double expected = from == PixelSizeSource::FocalPlane  ? c.planeMm
                                : from == PixelSizeSource::Focal35mm ? c.equivalentMm
                                                                     : camera.params.pixelSize;
        EXPECT_NEAR(camera.params.pixelSize, expected, 1e-4 * expected) << c.what;
    }
}

TEST(PixelSize, ACalibrationInPixelsIsWeighedWithTheOthers)
{
    struct Case
    {
        const char* what;
        double calibratedPx; ///< 4 mm / 1.5 um is 2666.7
        double designPx;
        double planeMm;
        double focal35Mm; ///< 28.8 for 1.5 um
        PixelSizeSource believed;
        double pixelSizeMm;
    };
    const PixelSizeSource calibration = PixelSizeSource::Calibration;
    const Case cases[] = {
        {"alone", 2500.0, 0.0, 0.0, 0.0, calibration, 0.0016},
        {"the design's counts", 2500.0, 2000.0, 0.0, 0.0, calibration, 0.002},
        {"the tag is finer", 2500.0, 0.0, 0.0015, 0.0, PixelSizeSource::FocalPlane, 0.0015},
        {"supported", 2500.0, 0.0, 0.003, 28.8, calibration, 0.0016},
        {"contradicted", 1333.3, 0.0, 0.0, 28.8, PixelSizeSource::Focal35mm, 0.0015},
        {"absurd", 100000.0, 0.0, 0.0, 0.0, PixelSizeSource::None, 0.0}};
    for (const Case& c : cases) {
        ExifInfo exif = unlistedCamera();
        exif.focalPlane.reset();
        if (c.planeMm > 0.0) {
            exif.focalPlane = FocalPlaneResolution{1.0 / c.planeMm, 1.0 / c.planeMm};
        }
        exif.focalLength35Mm = 43.2666 * 4.0 / (0.0015 * 5000.0) * c.focal35Mm / 28.8;
        exif.calibration.emplace();
        exif.calibration->focalLengthPx = c.calibratedPx;
        exif.calibration->nominalFocalLengthPx = c.designPx;
        CameraData camera;
        PixelSizeSource from = PixelSizeSource::None;
        QString error;
        EXPECT_EQ(getCamera(exif, camera, &from, error), c.believed != PixelSizeSource::None)
            << c.what;
        EXPECT_EQ(text::toString(from), text::toString(c.believed)) << c.what;
        EXPECT_NEAR(camera.params.pixelSize, c.pixelSizeMm, 1e-6) << c.what;
    }
}

TEST(PixelSize, TheEquivalentOfAFisheyeIsNotBelieved)
{
    ExifInfo exif = unlistedCamera();
    exif.focalPlane.reset();
    for (const auto& [equivalent, believed] : {std::pair(8.0, false), {10.0, true}}) {
        exif.focalLength35Mm = equivalent;
        exif.focalLengthMm = 0.1 * equivalent;
        const auto evidence = findPixelSizeEvidence(exif);
        ASSERT_EQ(evidence.size(), 1U);
        EXPECT_EQ(evidence[0].doubt.isEmpty(), believed) << equivalent;
    }
}

} // namespace
} // namespace lumo::exif
