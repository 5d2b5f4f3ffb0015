// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_model_from_db.h"
#include "test_cameras.h"

#include <gtest/gtest.h>

namespace lumo {
namespace {

const bands_t kGreenNir{{"Green", 550, 40, 1}, {"NIR", 790, 40, 1}};

VignettingData flatVignetting()
{
    return {Eigen::MatrixXd::Ones(2, 1), 0, 0, VignettingType::Polynomial};
}

TEST(CopyCameraModel, TakesParametersSerialNumberSourceAndBands)
{
    const CameraModelFromDB model = testModel("Cam", "7");
    CameraData camera;
    camera.setBands(band::makeRGBBands(), false);
    copyCameraModelToParams(model, CameraSource::EditedDatabase, camera, npos);
    EXPECT_EQ(camera.serialNumber, "7");
    EXPECT_TRUE(camera.params.equal(model.params, true));
    EXPECT_EQ(camera.params.source, CameraSource::EditedDatabase);
    EXPECT_EQ(camera.bands, band::makeRGBBands());
}

struct BandsCase
{
    const char* name;
    bands_t camera;
    bool fixed;
    bands_t config;
    std::size_t index;
    bands_t result;
    bool custom;
};

TEST(CopyCameraModel, BandsAreChosenMergedOrKept)
{
    const bands_t garbage{{"Green", 550, 40, 1}, {"Garbage"}, {"NIR", 790, 40, 1}};
    const bands_t bare{{"Green", 0, 0, 1}, {"NIR", 0, 0, 1}};
    const bands_t own{{"Green", 555, 40, 1}, {"NIR", 790, 40, 1}};
    const bands_t one{{"Grey"}};
    const BandsCase cases[] = {
        {"garbage goes when the count differs", bare, false, garbage, 0, kGreenNir, false},
        {"garbage stays when the count agrees", garbage, false, garbage, 0, garbage, false},
        {"nothing fits", one, false, garbage, npos, one, false},
        {"fixed and the same", kGreenNir, true, kGreenNir, npos, kGreenNir, false},
        {"fixed and filled", bare, true, kGreenNir, npos, kGreenNir, true},
        {"fixed and different", own, true, kGreenNir, npos, own, true},
        {"fixed and nothing fits", one, true, kGreenNir, npos, one, true},
    };
    for (const BandsCase& test : cases) {
        SCOPED_TRACE(test.name);
        CameraModelFromDB model = testModel("Cam");
        model.bandConfigs = {test.config};
        CameraData camera;
        camera.setBands(test.camera, test.fixed);
        copyCameraModelToParams(model, CameraSource::InternalDatabase, camera, test.index);
        EXPECT_EQ(camera.bands, test.result);
        EXPECT_EQ(camera.fixedBands, test.fixed);
        EXPECT_EQ(camera.params.source == CameraSource::Custom, test.custom);
    }
}

struct KeepCase
{
    const char* name;
    bool vignetting;
    bool internals;
    bool shutter;
};

TEST(CopyCameraModel, WhatIsKeptStaysAndMakesTheCameraCustom)
{
    CameraData before = testModel("Own").camera();
    before.params.pixelSize = 0.003;
    before.params.setPrincipalPointPixel({2010, 1490});
    before.params.perspective.radialK1 = 0.1;
    before.params.lineReadoutTime = 0.02;
    before.params.vignetting[280] = flatVignetting();
    const KeepCase cases[] = {
        {"nothing", false, false, false},
        {"vignetting", true, false, false},
        {"internals", false, true, false},
        {"shutter", false, false, true},
    };
    const CameraModelFromDB model = testModel("Cam");
    for (const KeepCase& test : cases) {
        SCOPED_TRACE(test.name);
        CameraData camera = before;
        camera.keepVignetting = test.vignetting;
        camera.keepOptimisedInternals = test.internals;
        camera.keepShutter = test.shutter;
        copyCameraModelToParams(model, CameraSource::InternalDatabase, camera, npos);
        EXPECT_EQ(camera.params.vignetting.size(), test.vignetting ? 1u : 0u);
        EXPECT_EQ(camera.params.perspective.radialK1, test.internals ? 0.1 : 0.0);
        EXPECT_NEAR(camera.params.principalPointPixel()[0], test.internals ? 2010 : 2000, 1e-9);
        EXPECT_EQ(camera.params.lineReadoutTime, test.shutter ? 0.02 : 0.0);
        EXPECT_EQ(camera.params.pixelSize, model.params.pixelSize);
        const bool kept = test.vignetting || test.internals || test.shutter;
        EXPECT_EQ(
            camera.params.source, kept ? CameraSource::Custom : CameraSource::InternalDatabase);
    }
}

TEST(CopyCameraModel, WhatIsKeptAndEqualsTheModelMakesCustomOnlyIfAllElseDiffers)
{
    const CameraModelFromDB model = testModel("Cam");
    for (const double pixelSize : {model.params.pixelSize, 0.003}) {
        CameraData camera = model.camera();
        camera.params.pixelSize = pixelSize;
        camera.keepShutter = true;
        copyCameraModelToParams(model, CameraSource::UserDatabase, camera, npos);
        EXPECT_EQ(
            camera.params.source,
            pixelSize == 0.003 ? CameraSource::Custom : CameraSource::UserDatabase);
    }
}

TEST(CopyCameraModel, KeepingVignettingThatIsNotThereIsForgotten)
{
    CameraModelFromDB model = testModel("Cam");
    model.params.vignetting[280] = flatVignetting();
    CameraData camera;
    camera.keepVignetting = true;
    copyCameraModelToParams(model, CameraSource::InternalDatabase, camera, 0);
    EXPECT_FALSE(camera.keepVignetting);
    EXPECT_EQ(camera.params.vignetting.size(), 1u);
    EXPECT_EQ(camera.params.source, CameraSource::InternalDatabase);
}

TEST(CopyCameraModel, AKeptFisheyeLensComesWhole)
{
    CameraData camera = testModel("Own").camera();
    camera.params.lensType = LensType::Fisheye;
    camera.params.fisheye.setAffine(false, 1600, 1, 2, 1601);
    camera.keepOptimisedInternals = true;
    const FisheyeParams lens = camera.params.fisheye;
    copyCameraModelToParams(testModel("Cam"), CameraSource::InternalDatabase, camera, npos);
    EXPECT_EQ(camera.params.lensType, LensType::Fisheye);
    EXPECT_EQ(camera.params.fisheye, lens);
}

} // namespace
} // namespace lumo
