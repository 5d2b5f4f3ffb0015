// SPDX-License-Identifier: Apache-2.0
#include "lumo/exif/camera_from_exif.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

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

/// A statement about a pixel size of 2 um, `off` times as large.
PixelSizeEvidence evidenceOf(PixelSizeSource source, double off, double sigma, double wrongShare)
{
    PixelSizeEvidence evidence{source, 0.002 * off};
    evidence.sigma = sigma;
    evidence.wrongShare = wrongShare;
    return evidence;
}

TEST(PixelSize, EvidenceIsCombinedByWeightAndDoubtWidensTheInterval)
{
    using Source = PixelSizeSource;
    const PixelSizeEvidence table = evidenceOf(Source::SensorTable, 1.0, 0.01, 0.04);
    const PixelSizeEvidence plane = evidenceOf(Source::FocalPlane, 1.01, 0.01, 0.06);
    const PixelSizeEvidence coarse = evidenceOf(Source::Focal35mm, 1.04, 0.03, 0.05);
    PixelSizeEvidence absurd = evidenceOf(Source::FocalPlane, 9.0, 0.01, 0.06);
    absurd.doubt = QStringLiteral("absurd");
    struct Case
    {
        const char* what;
        std::vector<PixelSizeEvidence> evidence;
        double times; ///< of 2 um; 0: none
        double fewestSigma;
        double mostSigma;
        Source from;
    };
    const Case cases[] = {
        {"nothing", {}, 0.0, 0.0, 0.0, Source::None},
        {"one", {coarse}, 1.04, 0.029, 0.031, Source::Focal35mm},
        {"two of equal weight",
         {table, plane},
         std::sqrt(1.01),
         0.007,
         0.0072,
         Source::SensorTable},
        {"a coarse one confirms", {table, coarse}, 1.0, 0.0099, 0.0101, Source::SensorTable},
        {"a doubted one", {absurd, table}, 1.0, 0.0099, 0.0101, Source::SensorTable},
        {"two against one",
         {evidenceOf(Source::SensorTable, 1.7, 0.01, 0.04), plane,
          evidenceOf(Source::Calibration, 1.0, 0.02, 0.03)},
         std::pow(1.01, 0.8),
         0.0089,
         0.0101,
         Source::FocalPlane},
        {"one against one",
         {table, evidenceOf(Source::FocalPlane, 1.4, 0.01, 0.06)},
         1.0,
         0.1,
         0.3,
         Source::SensorTable},
        {"one that is doubtful",
         {evidenceOf(Source::SensorTable, 1.0, 0.01, 0.3)},
         1.0,
         0.1,
         0.3,
         Source::SensorTable},
        {"one that is likely wrong",
         {evidenceOf(Source::SensorTable, 1.0, 0.01, 0.5)},
         0.0,
         0.0,
         0.0,
         Source::None},
        {"an origin counts once",
         {evidenceOf(Source::FieldOfView, 1.0, 0.02, 0.05),
          evidenceOf(Source::Focal35mm, 1.02, 0.025, 0.05)},
         1.0,
         0.0199,
         0.0201,
         Source::FieldOfView}};
    for (const Case& c : cases) {
        const CombinedPixelSize found = combinePixelSizes(c.evidence);
        EXPECT_NEAR(found.pixelSizeMm, 0.002 * c.times, 1e-7) << c.what;
        EXPECT_GE(found.sigma, c.fewestSigma) << c.what;
        EXPECT_LE(found.sigma, c.mostSigma) << c.what;
        EXPECT_EQ(text::toString(found.from), text::toString(c.from)) << c.what;
    }
    EXPECT_NEAR(sigmasApart(plane, 0.002, 0.01), std::log(1.01) / std::hypot(0.01, 0.01), 1e-9);
}

struct Rule
{
    const char* what;
    ExifInfo exif;
    PixelSizeSource source;
    double pixelSizeMm; ///< 0: the source tells nothing
    double sigma;
};

ExifInfo changed(ExifInfo exif, void (*change)(ExifInfo&))
{
    change(exif);
    return exif;
}

// Each is a rule that was wrong on files of the field.
TEST(PixelSize, EachSourceKnowsItsConventionsAndItsError)
{
    using Source = PixelSizeSource;
    ExifInfo bare = unlistedCamera();
    bare.focalPlane.reset();
    const auto equivalent = [&](double mm, double equivalentMm) {
        ExifInfo exif = bare;
        exif.focalLengthMm = mm;
        exif.focalLength35Mm = equivalentMm;
        return exif;
    };
    ExifInfo classOfSensor = equivalent(24.0, 36.0);
    classOfSensor.imageWidth = 6000;
    classOfSensor.imageHeight = 4000;
    ExifInfo wide = equivalent(3.61, 20.0);
    wide.imageHeight = 2250;
    ExifInfo angle = bare;
    angle.focalLengthMm = 6.7;
    angle.fieldOfView = FieldOfView{53.13, 0.0, 0.0};
    ExifInfo sphere = bare;
    sphere.spherical = true;
    ExifInfo diagonal = bare;
    diagonal.sensorDiagonalMm = 7.5;
    ExifInfo design = bare;
    design.calibration.emplace();
    design.calibration->focalLengthPx = 2500.0;
    design.calibration->nominalFocalLengthPx = 2000.0;
    ExifInfo zoomed = listedCamera(4000, 3000);
    zoomed.focalLengthMm = 7.44;
    zoomed.focalLength35Mm = 69.2; // of the middle half of the sensor
    zoomed.digitalZoom = 2.0;
    ExifInfo unzoomed = zoomed;
    unzoomed.focalLength35Mm = 34.6;
    const double nominal = std::hypot(0.022, 0.289 / 28.8, 0.0072);
    const Rule rules[] = {
        {"35 mm equivalent", equivalent(4.0, 28.8), Source::Focal35mm, 0.0012019, 0.0},
        {"rounded focal length", equivalent(4.2, 28.8), Source::Focal35mm, 0.0012620, nominal},
        {"a factor of 1.5 is 1.535", classOfSensor, Source::Focal35mm, 0.0039088, 0.012},
        {"16:9 of a 4:3 sensor", wide, Source::Focal35mm, 0.0016305, 0.0502},
        {"angle", angle, Source::FieldOfView, 0.001675, 0.0205},
        {"sphere", sphere, Source::FieldOfView, 0.0062832, 0.001},
        {"diagonal", diagonal, Source::FocalPlane, 0.0015, 0.01},
        {"the design's focal length", design, Source::Calibration, 0.002, 0.0729},
        {"editors keep the tag",
         changed(unlistedCamera(), [](ExifInfo& e) { e.software = "GIMP"; }), Source::FocalPlane,
         0.0015, 0.01},
        {"zoomed", zoomed, Source::SensorTable, 5.573 / 6000, 0.01},
        {"a zoom that explains nothing", unzoomed, Source::SensorTable, 5.573 / 3000, 0.01}};
    for (const Rule& rule : rules) {
        bool found = false;
        for (const PixelSizeEvidence& each : findPixelSizeEvidence(rule.exif)) {
            if (each.source == rule.source) {
                found = true;
                EXPECT_NEAR(each.pixelSizeMm, rule.pixelSizeMm, 0.001 * rule.pixelSizeMm)
                    << rule.what;
                EXPECT_EQ(each.doubt, QString()) << rule.what;
                EXPECT_FALSE(each.formula.isEmpty() || each.reason.isEmpty()) << rule.what;
                if (rule.sigma > 0.0) {
                    EXPECT_NEAR(each.sigma, rule.sigma, 0.02 * rule.sigma) << rule.what;
                }
            }
        }
        EXPECT_TRUE(found) << rule.what;
    }
}

TEST(PixelSize, TheTableIsDoubtedWhereAProductHasSeveralCameras)
{
    struct Case
    {
        const char* what;
        std::size_t width;
        std::size_t height;
        bool bandsNamed;
        double leastWrong;
    };
    const Case cases[] = {
        {"the whole sensor", 4000, 3000, false, 0.0},
        {"a detector", 640, 512, false, 0.5},
        {"narrower than the sensor", 3600, 3000, false, 0.2},
        {"bands", 4000, 3000, true, 0.2}};
    for (const Case& c : cases) {
        ExifInfo exif = listedCamera(c.width, c.height);
        exif.bandsNamed = c.bandsNamed;
        const auto evidence = findPixelSizeEvidence(exif);
        ASSERT_EQ(evidence.size(), 1U) << c.what;
        EXPECT_GE(evidence[0].wrongShare, c.leastWrong) << c.what;
        const CombinedPixelSize found = combinePixelSizes(evidence);
        EXPECT_EQ(found.pixelSizeMm > 0.0 && found.sigma < 0.02, c.leastWrong == 0.0) << c.what;
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
        const CameraParams lens = makeCamera(exif, 0.001).params;
        EXPECT_EQ(lens.lensType == LensType::Fisheye, !believed) << equivalent;
        if (!believed) { // a quarter of a circle of 0.8 mm
            EXPECT_NEAR(lens.pixel2mm(lens.fisheye.c), 0.8 * std::acos(0.0), 1e-9);
        }
    }
}

} // namespace
} // namespace lumo::exif
