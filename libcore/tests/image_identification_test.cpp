// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/image_identification.h"
#include "test_cameras.h"
#include "test_database.h"

#include <gtest/gtest.h>

#include <vector>

namespace lumo {
namespace {

ExifInfo exifOf(
    const char* model, std::size_t width, std::size_t height, std::size_t fileWidth,
    std::size_t fileHeight)
{
    ExifInfo exif;
    exif.make = "Maker";
    exif.model = model;
    exif.focalLengthMm = 5.0;
    exif.imageWidth = width;
    exif.imageHeight = height;
    exif.fileWidth = fileWidth;
    exif.fileHeight = fileHeight;
    exif.bands = band::makeRGBBands();
    return exif;
}

ExifInfo withFocalPlane(ExifInfo exif, double pixelsPerMm)
{
    exif.focalPlane = FocalPlaneResolution{pixelsPerMm, pixelsPerMm};
    return exif;
}

/// Named by its identifier; \p pixelSizeUm micrometres.
CameraModelFromDB modelOf(const char* identifier, double pixelSizeUm)
{
    CameraModelFromDB model = testModel(identifier);
    const QStringList tokens = tokenizeExifId(identifier);
    model.params.setImageSize(tokens[3].toULongLong(), tokens[4].toULongLong());
    model.params.pixelSize = pixelSizeUm / 1000.0;
    return model;
}

ExifInfo withFocalLength(ExifInfo exif, double mm, double equivalentMm = 0.0)
{
    exif.focalLengthMm = mm;
    exif.focalLength35Mm = equivalentMm;
    return exif;
}

ExifInfo asStored(const char* model, std::size_t width, std::size_t height)
{
    return exifOf(model, width, height, width, height);
}

ExifInfo edited(ExifInfo exif)
{
    exif.software = "Adobe Photoshop 22.1";
    exif.sizeStated = true;
    return exif;
}

struct Case
{
    const char* name;
    ExifInfo exif;
    double pixelSizeUm;
    PixelSizeOrigin from;
    ImageMode mode;
};

// Cam: a sensor of 6 mm x 4.5 mm that is also read binned and cropped. Pair: a wide
// colour camera and a thermal one under one name.
TEST(IdentifyImage, PixelSizeAndModeFollowFromTheSizes)
{
    const CameraModelDb db = databaseWith(
        {modelOf("Cam_5.0_4000x3000", 1.5), modelOf("Cam_5.0_2000x1500", 3.0),
         modelOf("Cam_5.0_3000x3000", 1.5), modelOf("Cam_5.0_4000x2240", 1.5),
         modelOf("Pair_5.0_4000x3000", 1.5), modelOf("Pair_9.0_640x512", 12.0),
         modelOf("Maker_9.0_640x512", 17.0)});
    using From = PixelSizeOrigin;
    using Mode = ImageMode;
    ExifInfo makerOnly = asStored("", 640, 512);
    ExifInfo otherMakerSize = asStored("", 320, 256);
    const Case cases[] = {
        {"as recorded", asStored("Cam", 4000, 3000), 1.5, From::Database, Mode::Native},
        {"no picture", exifOf("Cam", 4000, 3000, 0, 0), 1.5, From::Database, Mode::Native},
        {"portrait", asStored("Cam", 3000, 4000), 1.5, From::Database, Mode::Native},
        {"listed as binned", asStored("Cam", 2000, 1500), 3.0, From::Database, Mode::Binned},
        {"listed as a crop", asStored("Cam", 3000, 3000), 1.5, From::Database, Mode::Cropped},
        {"listed as a wide crop", asStored("Cam", 4000, 2240), 1.5, From::Database, Mode::Cropped},
        {"file half as wide", exifOf("Cam", 4000, 3000, 2000, 1500), 3.0, From::Database,
         Mode::Resized},
        {"file turned and half as wide", exifOf("Cam", 4000, 3000, 1500, 2000), 3.0, From::Database,
         Mode::Resized},
        {"file cut to a square", exifOf("Cam", 4000, 3000, 1000, 1000), 1.5, From::Database,
         Mode::Cropped},
        {"file of a pixel", exifOf("Cam", 4000, 3000, 1, 1), 1.5, From::Database, Mode::Unknown},
        {"a crop that is not listed", asStored("Cam", 4000, 2250), 1.5, From::Estimated,
         Mode::Cropped},
        {"another focal length", withFocalLength(asStored("Cam", 4000, 3000), 50), 1.5,
         From::Estimated, Mode::Native},
        {"a quarter: scaled or binned", asStored("Cam", 1000, 750), 6.0, From::Estimated,
         Mode::Unknown},
        {"1/1.6, and the equivalent is the whole sensor's",
         withFocalLength(asStored("Cam", 2500, 1875), 5, 28.85), 2.4, From::Estimated,
         Mode::Resized},
        {"1/1.6, and the equivalent is a crop's",
         withFocalLength(asStored("Cam", 2500, 1875), 5, 46.15), 1.5, From::Estimated,
         Mode::Cropped},
        {"1/1.6, and nothing tells", asStored("Cam", 2500, 1875), 0, From::None, Mode::Unknown},
        {"neither scaled nor a crop", withFocalPlane(asStored("Cam", 1600, 900), 500), 2.0,
         From::FocalPlane, Mode::Unknown},
        {"one of two cameras, by focal length",
         withFocalLength(exifOf("Pair", 640, 512, 320, 256), 9), 24, From::Database, Mode::Resized},
        {"one of two cameras, and nothing tells", withFocalLength(asStored("Pair", 640, 512), 12),
         0, From::None, Mode::Unknown},
        {"the maker alone", makerOnly, 17, From::Estimated, Mode::Native},
        {"the maker alone, of another size", otherMakerSize, 0, From::None, Mode::Unknown},
        {"an editor wrote it", withFocalPlane(edited(asStored("Else", 2000, 1500)), 500), 2.0,
         From::FocalPlane, Mode::Unknown},
        {"pixels that no camera has", withFocalPlane(asStored("Else", 2000, 1500), 1000 / 15.0),
         15.0, From::FocalPlane, Mode::Resized},
        {"unknown, no evidence", asStored("Else", 2000, 1500), 0, From::None, Mode::Unknown},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        const ImageIdentification found = identifyImage(test.exif, db);
        EXPECT_NEAR(found.camera.params.pixelSize * 1000, test.pixelSizeUm, 1e-3);
        EXPECT_EQ(toString(found.pixelSizeFrom), toString(test.from));
        EXPECT_EQ(toString(found.mode), toString(test.mode)) << found.modeReason.toStdString();
        const bool holdsPicture = test.exif.fileWidth > 0;
        EXPECT_EQ(found.width, holdsPicture ? test.exif.fileWidth : test.exif.imageWidth);
        EXPECT_EQ(found.height, holdsPicture ? test.exif.fileHeight : test.exif.imageHeight);
        EXPECT_EQ(found.source.has_value(), test.pixelSizeUm > 0);
        EXPECT_EQ(found.reason.isEmpty(), test.pixelSizeUm > 0);
    }
}

QStringList disagreements(const ExifInfo& exif, const std::vector<CameraModelFromDB>& models)
{
    return identifyImage(exif, databaseWith(models)).disagreements;
}

TEST(IdentifyImage, WhatSpeaksAgainstThePixelSizeIsSaid)
{
    const std::vector<CameraModelFromDB> models{
        modelOf("Cam_5.0_4000x3000", 1.5), modelOf("Maker_9.0_640x512", 17.0)};
    const ExifInfo exif = asStored("Cam", 4000, 3000);
    EXPECT_EQ(disagreements(exif, models), QStringList());
    EXPECT_EQ(disagreements(withFocalPlane(exif, 1000 / 1.56), models), QStringList());
    EXPECT_EQ(
        disagreements(withFocalPlane(exif, 1000 / 1.6), models),
        QStringList(
            "the pixel size is 1.5 um by database, but 1.6 um by focalPlane, 4.6 sigma off"));
    EXPECT_EQ(
        disagreements(withFocalPlane(exif, 1), models),
        QStringList("the pixel size is 1.5 um by database, but 1000 um by focalPlane, 459.8 sigma "
                    "off (refused: the sensor would be 4000 mm long)"));
    ExifInfo zoomed = exif;
    zoomed.digitalZoom = 2;
    EXPECT_EQ(disagreements(zoomed, models).size(), 1);
    // The table has 7.44 mm x 5.573 mm for the colour camera of this name.
    ExifInfo thermal = withFocalLength(asStored("Canon PowerShot G9", 640, 512), 9.1);
    thermal.make = "Canon";
    const CameraModelFromDB own = modelOf("Canon PowerShot G9_9.1_640x512", 17.0);
    EXPECT_EQ(disagreements(thermal, {own}).size(), 1);
    EXPECT_EQ(
        disagreements(thermal, {own, modelOf("Canon PowerShot G9_7.4_4000x3000", 1.86)}),
        QStringList());
    const QStringList ofMaker = disagreements(asStored("", 640, 512), models);
    ASSERT_EQ(ofMaker.size(), 1);
    EXPECT_TRUE(ofMaker[0].contains("Maker_9.0_640x512")) << ofMaker[0].toStdString();
}

// The table of sensor sizes has 7.44 mm x 5.573 mm for this camera.
TEST(IdentifyImage, TheTableAloneDoesNotCountWhereItMayBeOfAnotherCamera)
{
    struct TableCase
    {
        const char* what;
        const char* model; ///< of the database
        double pixelsPerMm;
        double pixelSizeUm;
        double sigmaUm;
    };
    const TableCase cases[] = {
        {"a name that the database does not know", "Other_5.0_4000x3000", 0.0, 1.858, 0.0186},
        {"no size or focal length of the database fits", "Canon PowerShot G9_9.0_640x512", 0.0, 0.0,
         0.0},
        {"another source decides, and the interval covers the table",
         "Canon PowerShot G9_9.0_640x512", 800.0, 1.25, 0.1585}};
    for (const TableCase& c : cases) {
        ExifInfo exif = asStored("Canon PowerShot G9", 4000, 3000);
        exif.make = "Canon";
        if (c.pixelsPerMm > 0.0) {
            exif = withFocalPlane(exif, c.pixelsPerMm);
        }
        const ImageIdentification found =
            identifyImage(exif, databaseWith({modelOf(c.model, 12.0)}));
        EXPECT_NEAR(found.camera.params.pixelSize * 1000, c.pixelSizeUm, 1e-3) << c.what;
        EXPECT_NEAR(found.pixelSizeSigmaMm * 1000, c.sigmaUm, 1e-3) << c.what;
    }
}

TEST(IdentifyImage, ACropIsTakenForCentred)
{
    const CameraModelDb db = databaseWith({testModel("Cam_5.0_4000x3000")});
    const ImageIdentification found = identifyImage(exifOf("Cam", 4000, 3000, 3000, 2900), db);
    EXPECT_EQ(found.camera.params.imageWidth, 3000u);
    EXPECT_NEAR(found.camera.params.principalPointPixel()[0], 1500, 1e-9);
    EXPECT_NEAR(found.camera.params.principalPointPixel()[1], 1450, 1e-9);
}

TEST(IdentifyImage, TheModelIsTurnedAndScaledWithTheImage)
{
    CameraModelFromDB model = testModel("Cam_5.0_4000x3000");
    model.params.setPrincipalPointPixel({2010, 1490});
    model.params.lensType = LensType::Fisheye;
    model.params.fisheye.setAffine(true, 1600, 0, 0, 1600);
    model.params.lineReadoutTime = 0.01;
    model.params.vignetting[280] =
        VignettingData(Eigen::Vector2d(1, -1e-4), 2000, 1500, VignettingType::Polynomial);
    const CameraModelDb db = databaseWith({model});
    const ImageIdentification found = identifyImage(exifOf("Cam", 3000, 4000, 1500, 2000), db);
    const CameraParams& params = found.camera.params;
    EXPECT_EQ(found.modelName, "Cam_5.0_4000x3000");
    EXPECT_EQ(found.source, CameraSource::InternalDatabase);
    EXPECT_EQ(params.imageWidth, 1500u);
    EXPECT_NEAR(params.principalPointPixel()[0], (3000 - 1490) / 2.0, 1e-9);
    EXPECT_NEAR(params.principalPointPixel()[1], 2010 / 2.0, 1e-9);
    EXPECT_NEAR(params.fisheye.c, 800, 1e-9);
    EXPECT_NEAR(params.lineReadoutTime, 0.02, 1e-12);
    EXPECT_NEAR(params.vignetting.at(280).coefficients(1, 0), -2e-4, 1e-12);
}

TEST(IdentifyImage, CandidatesSayWhatTookOrRefusedThem)
{
    CameraModelFromDB ofBody = testModel("Cam_5.0_4000x3000", "B7");
    const CameraModelDb db = databaseWith(
        {modelOf("Cam_5.0_4000x3000", 1.5), ofBody, modelOf("Cam_5.0_2000x1500", 3.0),
         modelOf("CAM_8.0_4000x3000", 1.5), modelOf("Camera_5.0_4000x3000", 1.5)});
    const auto rules = [&db](const QString& serialNumber) {
        ExifInfo exif = asStored("Cam", 4000, 3000);
        exif.serialNumber = serialNumber;
        QStringList result;
        for (const CandidateModel& candidate : ImageIdentifier(db).candidates(exif)) {
            result.append(QStringLiteral("%1 %2 %3: %4")
                              .arg(candidate.name, candidate.serialNumber)
                              .arg(candidate.taken)
                              .arg(candidate.rule));
        }
        result.sort();
        return result;
    };
    const QString others[] = {
        "CAM_8.0_4000x3000  0: its focal length is 8.0 mm",
        "Cam_5.0_2000x1500  0: its pictures are 2000x1500"};
    EXPECT_EQ(
        rules("A1"),
        (QStringList{
            others[0], others[1], "Cam_5.0_4000x3000  1: the image's identifier is its name",
            "Cam_5.0_4000x3000 B7 0: it is for body B7 alone"}));
    EXPECT_EQ(
        rules("B7"),
        (QStringList{
            others[0], others[1], "Cam_5.0_4000x3000  0: the model of this body goes before",
            "Cam_5.0_4000x3000 B7 1: the image's identifier is its name"}));
}

} // namespace
} // namespace lumo
