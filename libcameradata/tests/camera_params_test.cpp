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
    const auto fisheye = [](const std::function<void(FisheyeParams&)>& change) {
        return [change](CameraParams& p) {
            p = fisheyeParams();
            change(p.fisheye);
        };
    };
    const InvalidCase cases[] = {
        {"The camera has no name", [](CameraParams& p) { p.name.clear(); }},
        {"The camera name is not allowed", [](CameraParams& p) { p.name = "a/b"; }},
        {"The image size is 0", [](CameraParams& p) { p.setImageSize(0, 10); }},
        {"The image size is 0", [](CameraParams& p) { p.setImageSize(10, 0); }},
        {"The pixel size is not positive", [](CameraParams& p) { p.pixelSize = 0; }},
        {"The pixel size is not positive", [](CameraParams& p) { p.pixelSize = -1; }},
        {"The pixel size is not positive", [nan](CameraParams& p) { p.pixelSize = nan; }},
        {"The principal point is not a number",
         [nan](CameraParams& p) { p.principalPointXMm = nan; }},
        {"The principal point is not a number",
         [nan](CameraParams& p) { p.principalPointYMm = nan; }},
        {"The line read-out time is not a number",
         [nan](CameraParams& p) { p.lineReadoutTime = nan; }},
        {"The shutter model is unknown", [](CameraParams& p) { p.shutterModel = -1; }},
        {"The shutter model is unknown", [](CameraParams& p) { p.shutterModel = 5; }},
        {"The focal length is not positive",
         [](CameraParams& p) { p.perspective.focalLengthMm = 0; }},
        {"A distortion coefficient is not a number",
         [nan](CameraParams& p) { p.perspective.tangentialT2 = nan; }},
        {"The lens type is unknown", [](CameraParams& p) { p.lensType = LensType(7); }},
        {"The affine part of the fisheye lens cannot be inverted",
         [](CameraParams& p) { p.lensType = LensType::Fisheye; }},
        {"The degree of the fisheye polynomial is not 1 to 4",
         fisheye([](FisheyeParams& f) { f.npoly = 5; })},
        {"The degree of the fisheye polynomial is not 1 to 4",
         fisheye([](FisheyeParams& f) { f.npoly = 0; })},
        {"A fisheye coefficient is not a number",
         fisheye([nan](FisheyeParams& f) { f.poly[4] = nan; })},
        {"The pixel value range is invalid: a limit is not a number",
         [nan](CameraParams& p) {
             p.pixelValues[DataType::UInt8] = {0, nan};
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

/// A lens of this type in which every number that files store is 1.5.
CameraParams filledParams(LensType type)
{
    CameraParams params;
    params.lensType = type;
    params.pixelSize = params.principalPointXMm = params.principalPointYMm = 1.5;
    params.lineReadoutTime = params.velocityNumber = 1.5;
    params.perspective = {1.5, 6, 1.5, 1.5, 1.5, 1.5, 1.5};
    params.fisheye.poly.fill(1.5);
    params.fisheye.setAffine(false, 1.5, 1.5, 1.5, 1.5);
    params.pixelValues[DataType::UInt8] = {1.5, 1.5};
    params.vignetting[280].coefficients = Eigen::MatrixXd::Constant(2, 1, 1.5);
    return params;
}

constexpr LensType kPerspective = LensType::Perspective;
constexpr LensType kFisheye = LensType::Fisheye;

TEST(CameraParams, NumbersAreComparedAsWritten)
{
    const struct
    {
        const char* name;
        int digits;
        LensType type;
        double& (*of)(CameraParams&);
    } cases[] = {
        {"pixel size", 6, kPerspective, [](auto& p) -> double& { return p.pixelSize; }},
        {"centre x", 6, kPerspective, [](auto& p) -> double& { return p.principalPointXMm; }},
        {"centre y", 6, kPerspective, [](auto& p) -> double& { return p.principalPointYMm; }},
        {"read-out", 10, kFisheye, [](auto& p) -> double& { return p.lineReadoutTime; }},
        {"velocity", 10, kFisheye, [](auto& p) -> double& { return p.velocityNumber; }},
        {"f", 7, kPerspective, [](auto& p) -> double& { return p.perspective.focalLengthMm; }},
        {"K1", 9, kPerspective, [](auto& p) -> double& { return p.perspective.radialK1; }},
        {"K2", 9, kPerspective, [](auto& p) -> double& { return p.perspective.radialK2; }},
        {"K3", 9, kPerspective, [](auto& p) -> double& { return p.perspective.radialK3; }},
        {"T1", 9, kPerspective, [](auto& p) -> double& { return p.perspective.tangentialT1; }},
        {"T2", 9, kPerspective, [](auto& p) -> double& { return p.perspective.tangentialT2; }},
        {"p0", 9, kFisheye, [](auto& p) -> double& { return p.fisheye.poly.front(); }},
        {"p4", 9, kFisheye, [](auto& p) -> double& { return p.fisheye.poly.back(); }},
        {"c", 9, kFisheye, [](auto& p) -> double& { return p.fisheye.c; }},
        {"d", 9, kFisheye, [](auto& p) -> double& { return p.fisheye.d; }},
        {"e", 9, kFisheye, [](auto& p) -> double& { return p.fisheye.e; }},
        {"f", 9, kFisheye, [](auto& p) -> double& { return p.fisheye.f; }},
        {"min", 10, kFisheye, [](auto& p) -> double& { return p.pixelValues.begin()->second.min; }},
        {"max", 10, kFisheye, [](auto& p) -> double& { return p.pixelValues.begin()->second.max; }},
        {"vignetting", 6, kFisheye,
         [](auto& p) -> double& { return p.vignetting[280].coefficients(1); }},
    };
    for (const auto& [name, digits, type, of] : cases) {
        const CameraParams params = filledParams(type);
        const double lastDigit = std::pow(10.0, 1 - digits); // of 1.5
        for (const double step : {0.0, 0.1, -0.1, 1.1, -1.1}) {
            CameraParams other = params;
            of(other) += step * lastDigit;
            EXPECT_EQ(params.equal(other, true), std::abs(step) < 1.0) << name << ' ' << step;
        }
        CameraParams zero = params;
        CameraParams minusZero = params;
        of(zero) = 0.0;
        of(minusZero) = -0.0;
        EXPECT_TRUE(zero.equal(minusZero, true)) << name;
        const bool inLens = digits == 7 || digits == 9;
        CameraParams unused = params; // now of a type of which no lens parameter counts
        CameraParams changed = params;
        of(changed) = 9.0;
        unused.lensType = changed.lensType = LensType::Spherical;
        EXPECT_EQ(unused.equal(changed, true), inLens) << name;
    }
}

TEST(CameraParams, AllElseThatFilesStoreIsComparedExactly)
{
    const struct
    {
        const char* name;
        LensType type;
        Change change;
        bool equal = false;
    } cases[] = {
        {"source", kPerspective, [](auto& p) { p.source = CameraSource::Exif; }, true},
        {"other lens", kPerspective, [](auto& p) { p.fisheye.npoly = 1; }, true},
        {"other lens", kFisheye, [](auto& p) { p.perspective.distortion = 0; }, true},
        {"lens type", kPerspective, [](auto& p) { p.lensType = LensType::Spherical; }},
        {"name", kPerspective, [](auto& p) { p.name = "x"; }},
        {"width", kPerspective, [](auto& p) { p.imageWidth = 1; }},
        {"height", kPerspective, [](auto& p) { p.imageHeight = 1; }},
        {"shutter", kPerspective, [](auto& p) { p.shutterModel = 1; }},
        {"distortion", kPerspective, [](auto& p) { p.perspective.distortion = 4; }},
        {"degree", kFisheye, [](auto& p) { p.fisheye.npoly = 3; }},
        {"p0zero", kFisheye, [](auto& p) { p.fisheye.p0zero = true; }},
        {"symmetric", kFisheye, [](auto& p) { p.fisheye.symmetricAffine = true; }},
        {"pixel type", kFisheye,
         [](auto& p) {
             p.pixelValues = {{DataType::Int16, p.pixelValues[DataType::UInt8]}};
         }},
        {"one more type", kFisheye, [](auto& p) { p.pixelValues[DataType::Int16]; }},
        {"f-number", kFisheye,
         [](auto& p) {
             p.vignetting = {{400, p.vignetting[280]}};
         }},
        {"f-numbers", kFisheye, [](auto& p) { p.vignetting[400]; }},
        {"shape", kFisheye,
         [](auto& p) { p.vignetting[280].coefficients = Eigen::MatrixXd::Constant(1, 2, 1.5); }},
    };
    for (const auto& [name, type, change, equal] : cases) {
        CameraParams other = filledParams(type);
        change(other);
        EXPECT_EQ(filledParams(type).equal(other, true), equal) << name;
    }
    CameraParams bare = filledParams(kFisheye);
    bare.vignetting.clear();
    EXPECT_TRUE(bare.equal(filledParams(kFisheye), false));
    EXPECT_FALSE(bare.equal(filledParams(kFisheye), true));
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
