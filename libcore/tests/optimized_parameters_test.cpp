// SPDX-License-Identifier: Apache-2.0
#include "lumo/camerageometry/fisheye_camera.h"
#include "lumo/camerageometry/perspective_camera_0.h"
#include "lumo/camerageometry/perspective_camera_5.h"
#include "lumo/core/cameraInfo/optimized_parameters.h"
#include "test_cameras.h"

#include <gtest/gtest.h>

namespace lumo {
namespace {

TEST(LoadOptimizedParameters, PerspectiveLensInMillimetres)
{
    CameraModelFromDB model = testModel("Cam");
    model.params.setImageSize(2000, 1500);
    loadOptimizedParameters(
        PerspectiveCamera5(4000, 3000, {2010, 1480}, 3400, {-0.1, 0.02, -0.003}, {1e-4, -2e-4}),
        model);
    const CameraParams& params = model.params;
    EXPECT_EQ(params.lensType, LensType::Perspective);
    EXPECT_NEAR(params.perspective.focalLengthMm, 5.1, 1e-12);
    EXPECT_NEAR(params.principalPointXMm, 3.015, 1e-12);
    EXPECT_NEAR(params.principalPointYMm, 2.22, 1e-12);
    EXPECT_EQ(params.imageWidth, 4000u);
    EXPECT_EQ(params.imageHeight, 3000u);
    EXPECT_EQ(params.perspective.distortion, 6);
    EXPECT_EQ(params.perspective.radialK1, -0.1);
    EXPECT_EQ(params.perspective.radialK3, -0.003);
    EXPECT_EQ(params.perspective.tangentialT2, -2e-4);

    loadOptimizedParameters(PerspectiveCamera0(4000, 3000, {2000, 1500}, 3400), model);
    EXPECT_EQ(params.perspective.distortion, 0);
    EXPECT_EQ(params.perspective.radialK1, 0.0);
    EXPECT_EQ(params.perspective.tangentialT2, 0.0);
}

TEST(LoadOptimizedParameters, FisheyeLensWithItsDegree)
{
    CameraModelFromDB model = testModel("Cam");
    model.params.fisheye.poly[4] = 9.0;
    const FisheyeCamera::Affine affine{1600, 1, 2, 1601};
    loadOptimizedParameters(
        FisheyeCamera(4000, 3000, {2000, 1500}, {0, 1, 0.01, -0.1}, affine), model);
    const FisheyeParams& lens = model.params.fisheye;
    EXPECT_EQ(model.params.lensType, LensType::Fisheye);
    EXPECT_EQ(lens.npoly, 3);
    EXPECT_EQ(lens.poly, (std::array{0.0, 1.0, 0.01, -0.1, 0.0}));
    EXPECT_FALSE(lens.symmetricAffine);
    EXPECT_EQ(lens.d, 1.0);
    EXPECT_NEAR(model.params.focalLengthPixel(), 2 / 3.14159265 * 1600.5, 0.01);

    const FisheyeCamera tooLong(4000, 3000, {2000, 1500}, {0, 1, 0, 0, 0, 0}, affine);
    EXPECT_THROW(loadOptimizedParameters(tooLong, model), std::invalid_argument);
}

} // namespace
} // namespace lumo
