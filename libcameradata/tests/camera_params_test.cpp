// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/camera_data.h"
#include "lumo/cameradata/camera_name.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

namespace lumo {
namespace {

CameraParams perspectiveParams()
{
    CameraParams params;
    params.name = "Test_8.8_5472x3648";
    params.setImageSize(5472, 3648);
    params.pixelSize = 0.00241;
    params.setPrincipalPointPixel({2736, 1824});
    params.perspective.focalLengthMm = 8.8;
    params.perspective.radialK1 = -0.0123456789;
    params.perspective.tangentialT1 = 0.0001;
    params.perspective.tangentialT2 = -0.0002;
    return params;
}

CameraParams fisheyeParams()
{
    CameraParams params = perspectiveParams();
    params.lensType = LensType::Fisheye;
    params.fisheye.setAffine(true, 1657.9, 0, 0, 1657.9);
    return params;
}

using Change = std::function<void(CameraParams&)>;

struct InvalidCase
{
    const char* reason;
    Change change;
};

TEST(CameraParams, InvalidOnesSayWhy)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const InvalidCase cases[] = {
        {"The camera has no name", [](CameraParams& p) { p.name.clear(); }},
        {"The camera name is not allowed", [](CameraParams& p) { p.name = "a/b"; }},
        {"The image size is 0", [](CameraParams& p) { p.setImageSize(0, 10); }},
        {"The pixel size is not positive", [](CameraParams& p) { p.pixelSize = -1; }},
        {"The pixel size is not positive", [nan](CameraParams& p) { p.pixelSize = nan; }},
        {"The principal point is not a number",
         [nan](CameraParams& p) { p.principalPointXMm = nan; }},
        {"The shutter model is unknown", [](CameraParams& p) { p.shutterModel = 5; }},
        {"The focal length is not positive",
         [](CameraParams& p) { p.perspective.focalLengthMm = 0; }},
        {"A distortion coefficient is not a number",
         [nan](CameraParams& p) { p.perspective.tangentialT2 = nan; }},
        {"The lens type is unknown", [](CameraParams& p) { p.lensType = LensType(7); }},
        {"The affine part of the fisheye lens cannot be inverted",
         [](CameraParams& p) { p.lensType = LensType::Fisheye; }},
        {"The degree of the fisheye polynomial is not 1 to 4",
         [](CameraParams& p) {
             p = fisheyeParams();
             p.fisheye.npoly = 5;
         }},
        {"The pixel value range is invalid: minimum 255 exceeds maximum 0",
         [](CameraParams& p) {
             p.pixelValues[DataType::UInt8] = {255, 0};
         }},
        {"A vignetting coefficient is not a number",
         [nan](CameraParams& p) {
             p.vignetting[280] = {
                 Eigen::MatrixXd::Constant(1, 1, nan), 0, 0, VignettingType::Polynomial};
         }},
    };
    for (const InvalidCase& test : cases) {
        CameraParams params = perspectiveParams();
        test.change(params);
        QString error = "kept";
        EXPECT_FALSE(params.valid(error, false)) << test.reason;
        EXPECT_EQ(error, "kept");
        EXPECT_FALSE(params.valid(error, true));
        EXPECT_EQ(error, test.reason);
    }
    QString error;
    EXPECT_TRUE(perspectiveParams().valid(error, true)) << qPrintable(error);
    EXPECT_TRUE(fisheyeParams().valid(error, true)) << qPrintable(error);
}

struct EqualCase
{
    const char* name;
    Change change;
    bool equal;
};

TEST(CameraParams, EqualityIsThatOfWhatFilesHold)
{
    const EqualCase cases[] = {
        {"pixel size, 7th digit", [](CameraParams& p) { p.pixelSize *= 1 + 1e-8; }, true},
        {"pixel size, 5th digit", [](CameraParams& p) { p.pixelSize *= 1 + 1e-5; }, false},
        {"K1, 11th digit", [](CameraParams& p) { p.perspective.radialK1 -= 1e-13; }, true},
        {"K1, 8th digit", [](CameraParams& p) { p.perspective.radialK1 -= 1e-9; }, false},
        {"source", [](CameraParams& p) { p.source = CameraSource::Exif; }, true},
        {"lens not in use", [](CameraParams& p) { p.fisheye.c = 5; }, true},
        {"lens type", [](CameraParams& p) { p.lensType = LensType::Spherical; }, false},
        {"name", [](CameraParams& p) { p.name += "x"; }, false},
        {"read-out", [](CameraParams& p) { p.lineReadoutTime = 0.01; }, false},
        {"pixel values",
         [](CameraParams& p) {
             p.pixelValues[DataType::UInt16] = {0, 9};
         },
         false},
    };
    for (const EqualCase& test : cases) {
        CameraParams other = perspectiveParams();
        test.change(other);
        EXPECT_EQ(perspectiveParams().equal(other, true), test.equal) << test.name;
    }
    CameraParams withVignetting = perspectiveParams();
    withVignetting.vignetting[280] = {
        Eigen::MatrixXd::Ones(2, 1), 0, 0, VignettingType::Polynomial};
    EXPECT_TRUE(perspectiveParams().equal(withVignetting, false));
    EXPECT_FALSE(perspectiveParams().equal(withVignetting, true));
}

// Four quarter turns are none, and one turn takes the lens's displacement of an
// image point along with the point.
TEST(CameraParams, TurningTakesPointsAndDistortionAlong)
{
    const auto tangential = [](const PerspectiveParams& lens, double x, double y) {
        const double r2 = x * x + y * y;
        return std::array<double, 2>{
            2 * lens.tangentialT1 * x * y + lens.tangentialT2 * (r2 + 2 * x * x),
            lens.tangentialT1 * (r2 + 2 * y * y) + 2 * lens.tangentialT2 * x * y};
    };
    CameraParams params = fisheyeParams();
    params.fisheye.setAffine(false, 1, 2, 3, 4);
    params.setPrincipalPointPixel({2700, 1800});
    const CameraParams turned = params.turned();
    EXPECT_EQ(turned.imageWidth, 3648u);
    EXPECT_NEAR(turned.principalPointPixel()[0], 3648 - 1800, 1e-9);
    EXPECT_NEAR(turned.principalPointPixel()[1], 2700, 1e-9);

    const double x = 0.3;
    const double y = -0.2;
    const auto before = tangential(params.perspective, x, y);
    const auto after = tangential(turned.perspective, -y, x);
    EXPECT_NEAR(after[0], -before[1], 1e-15);
    EXPECT_NEAR(after[1], before[0], 1e-15);
    const FisheyeParams& a = params.fisheye;
    const FisheyeParams& b = turned.fisheye;
    EXPECT_EQ(b.c * -y + b.d * x, -(a.e * x + a.f * y));
    EXPECT_EQ(b.e * -y + b.f * x, a.c * x + a.d * y);

    const CameraParams back = turned.turned().turned().turned();
    EXPECT_TRUE(back.equal(params, true));
}

TEST(CameraParams, FisheyeTermsThatAreHeldAreSet)
{
    FisheyeParams lens;
    lens.poly[0] = 0.5;
    lens.setP0zero(true);
    EXPECT_EQ(lens.poly[0], 0.0);
    lens.setAffine(true, 10, 1, 2, 20);
    EXPECT_EQ((std::array{lens.c, lens.d, lens.e, lens.f}), (std::array{10.0, 0.0, 0.0, 10.0}));
    lens.setAffine(false, 10, 1, 2, 20);
    EXPECT_EQ((std::array{lens.c, lens.d, lens.e, lens.f}), (std::array{10.0, 1.0, 2.0, 20.0}));
}

TEST(CameraData, IsIncompleteWithoutWhatProjectionNeeds)
{
    CameraData camera;
    EXPECT_TRUE(camera.incomplete());
    camera.params = perspectiveParams();
    EXPECT_FALSE(camera.incomplete());
    camera.params.perspective.focalLengthMm = 0;
    EXPECT_TRUE(camera.incomplete());
    camera.params.lensType = LensType::Spherical;
    EXPECT_FALSE(camera.incomplete());
}

TEST(CameraName, ForbiddenNames)
{
    for (const char* name : {"", "none", "a/b", "a\\b", "<a", "a>", "a&b", "a\"", "a'", "a\nb"}) {
        EXPECT_FALSE(validCameraName(name)) << name;
    }
    EXPECT_FALSE(validCameraName(QString(256, 'a')));
    EXPECT_TRUE(validCameraName(QString(255, 'a')));
    EXPECT_TRUE(validCameraName("None"));
    EXPECT_TRUE(validCameraName(QString::fromUtf8("Kamera Ä (2) *ist")));
}

} // namespace
} // namespace lumo
