// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/image_identification.h"
#include "test_cameras.h"

#include <gtest/gtest.h>

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

CameraModelDb databaseWith(const CameraModelFromDB& model)
{
    cameradb::CameraDBData data;
    data.cameras.emplace(model.params.name, model);
    CameraModelDb db;
    db.setInternalData(data);
    return db;
}

ExifInfo withFocalPlane(ExifInfo exif, double pixelsPerMm)
{
    exif.focalPlane = FocalPlaneResolution{pixelsPerMm, pixelsPerMm};
    return exif;
}

struct Case
{
    const char* name;
    ExifInfo exif;
    double pixelSizeUm;
    PixelSizeOrigin from;
    std::size_t width;
    std::size_t height;
};

// The database holds Cam at 4000 x 3000 pixels of 1.5 um.
TEST(IdentifyImage, PixelSizeIsThatOfThePictureInTheFile)
{
    const CameraModelDb db = databaseWith(testModel("Cam_5.0_4000x3000"));
    const Case cases[] = {
        {"as recorded", exifOf("Cam", 4000, 3000, 4000, 3000), 1.5, PixelSizeOrigin::Database, 4000,
         3000},
        {"no picture", exifOf("Cam", 4000, 3000, 0, 0), 1.5, PixelSizeOrigin::Database, 4000, 3000},
        {"scaled to half", exifOf("Cam", 4000, 3000, 2000, 1500), 3.0, PixelSizeOrigin::Database,
         2000, 1500},
        {"other proportions", exifOf("Cam", 4000, 3000, 8, 8), 1.5, PixelSizeOrigin::Database, 8,
         8},
        {"portrait", exifOf("Cam", 3000, 4000, 3000, 4000), 1.5, PixelSizeOrigin::Database, 3000,
         4000},
        {"a crop that the database does not list", exifOf("Cam", 4000, 2250, 4000, 2250), 1.5,
         PixelSizeOrigin::Estimated, 4000, 2250},
        {"metadata before a scaled estimate",
         withFocalPlane(exifOf("Cam", 2000, 1500, 2000, 1500), 500), 2.0,
         PixelSizeOrigin::FocalPlane, 2000, 1500},
        {"unknown, no evidence", exifOf("Else", 2000, 1500, 2000, 1500), 0.0, PixelSizeOrigin::None,
         2000, 1500},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        const ImageIdentification found = identifyImage(test.exif, db);
        EXPECT_NEAR(found.camera.params.pixelSize * 1000, test.pixelSizeUm, 1e-9);
        EXPECT_EQ(toString(found.pixelSizeFrom), toString(test.from));
        EXPECT_EQ(found.width, test.width);
        EXPECT_EQ(found.height, test.height);
        EXPECT_EQ(found.source.has_value(), test.pixelSizeUm > 0);
        EXPECT_EQ(found.reason.isEmpty(), test.pixelSizeUm > 0);
    }
}

TEST(IdentifyImage, TheModelIsTurnedAndScaledWithTheImage)
{
    CameraModelFromDB model = testModel("Cam_5.0_4000x3000");
    model.params.setPrincipalPointPixel({2010, 1490});
    model.params.lensType = LensType::Fisheye;
    model.params.fisheye.setAffine(true, 1600, 0, 0, 1600);
    const CameraModelDb db = databaseWith(model);
    const ImageIdentification found = identifyImage(exifOf("Cam", 3000, 4000, 1500, 2000), db);
    const CameraParams& params = found.camera.params;
    EXPECT_EQ(found.modelName, "Cam_5.0_4000x3000");
    EXPECT_EQ(found.source, CameraSource::InternalDatabase);
    EXPECT_EQ(params.imageWidth, 1500u);
    EXPECT_NEAR(params.principalPointPixel()[0], (3000 - 1490) / 2.0, 1e-9);
    EXPECT_NEAR(params.principalPointPixel()[1], 2010 / 2.0, 1e-9);
    EXPECT_NEAR(params.fisheye.c, 800, 1e-9);
}

} // namespace
} // namespace lumo
