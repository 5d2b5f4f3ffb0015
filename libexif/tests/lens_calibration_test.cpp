// SPDX-License-Identifier: Apache-2.0
#include "image_files.h"
#include "lumo/exif/camera_from_exif.h"
#include "lumo/foundation/log.h"

#include <algorithm>
#include <cmath>

namespace lumo::exif {
namespace {

using Point = std::array<double, 2>;

constexpr int kWidth = 1280;
constexpr int kHeight = 960;
constexpr double kPixelSizeMm = 0.004;
constexpr double kFocalLengthMm = 5.6; ///< 1400 pixels

class Calibration : public ImageFiles
{
protected:
    ExifInfo readImage(const QByteArray& xmp, bool portrait = false)
    {
        return read(jpeg(
            kCamera + Tags{{"Exif.Photo.FocalLength", Exiv2::unsignedRational, "56/10"}},
            xmpPacket(xmp, "Camera", "http://a.example/'  xmlns:drone-dji='http://b.example/"),
            portrait ? kHeight : kWidth, portrait ? kWidth : kHeight));
    }
};

QByteArray property(const QByteArray& name, const QByteArray& value)
{
    return "<" + name + ">" + value + "</" + name + ">";
}

/// What the records of a camera's parameters say of the pixel where a ray appears.
Point project(const CameraParams& params, double x, double y)
{
    const Point middle = params.principalPointPixel();
    if (params.lensType == LensType::Fisheye) {
        const FisheyeParams& lens = params.fisheye;
        const double theta = std::atan(std::hypot(x, y)) / std::acos(0.0);
        double rho = 0.0;
        for (int i = lens.npoly; i >= 0; --i) {
            rho = rho * theta + lens.poly[static_cast<std::size_t>(i)];
        }
        const double scale = rho / std::hypot(x, y);
        return {
            middle[0] + scale * (lens.c * x + lens.d * y),
            middle[1] + scale * (lens.e * x + lens.f * y)};
    }
    const PerspectiveParams& lens = params.perspective;
    const double r2 = x * x + y * y;
    const double radial = r2 * (lens.radialK1 + r2 * (lens.radialK2 + r2 * lens.radialK3));
    const double t1 = lens.tangentialT1;
    const double t2 = lens.tangentialT2;
    const double dx = x * radial + 2.0 * t1 * x * y + t2 * (r2 + 2.0 * x * x);
    const double dy = y * radial + t1 * (r2 + 2.0 * y * y) + 2.0 * t2 * x * y;
    const double f = params.focalLengthPixel();
    return {middle[0] + f * (x + dx), middle[1] + f * (y + dy)};
}

/// The makers' formula: first row x, second y, of k1, k2, p1, p2, k3 =
/// -0.1, 0.12, 0.002, -0.003, -0.02 and a matrix of 1400 or 1430 pixels.
Point brown(double x, double y, double f, double cx, double cy)
{
    const double r2 = x * x + y * y;
    const double k = 1.0 - 0.1 * r2 + 0.12 * r2 * r2 - 0.02 * r2 * r2 * r2;
    return {
        cx + f * (x * k + 2.0 * 0.002 * x * y - 0.003 * (r2 + 2.0 * x * x)),
        cy + f * (y * k + 0.002 * (r2 + 2.0 * y * y) - 2.0 * 0.003 * x * y)};
}

Point fisheye(double x, double y)
{
    const double degrees = 180.0 / std::acos(-1.0) * std::atan(std::hypot(x, y));
    const double theta = degrees / 90.0;
    const double rho = theta + 0.01 * theta * theta - 0.14 * theta * theta * theta;
    const double cosine = x / std::hypot(x, y);
    const double sine = y / std::hypot(x, y);
    return {
        620.0 + rho * (2200.0 * cosine + 3.0 * sine), 470.0 + rho * (2.0 * cosine + 2190.0 * sine)};
}

const QByteArray kPoint = property("Camera:PrincipalPoint", "2.48, 1.88"); // 620, 470 pixels
const QByteArray kPerspective = property("Camera:ModelType", "perspective") + kPoint;
const QByteArray kTerms = property("Camera:PerspectiveDistortion", "-0.1,0.12,-0.02,0.002,-0.003");
const QByteArray kMm = property("Camera:PerspectiveFocalLengthUnits", "mm");
const QByteArray kDewarpData = property(
    "drone-dji:DewarpData", "2019-06-19;1430,1430,-20.0,-10.0,-0.1,0.12,0.002,-0.003,-0.02");
const QByteArray kFisheye = property("Camera:ModelType", "fisheye") + kPoint +
                            property("Camera:FisheyePolynomial", "0,1,0.01,-0.14") +
                            property("Camera:FisheyeAffineMatrix", "2200,3,2,2190");

struct Convention
{
    const char* what;
    QByteArray xmp;
    Point (*project)(double x, double y);
};

std::vector<Convention> conventions()
{
    constexpr auto k1400 = [](double x, double y) { return brown(x, y, 1400.0, 620.0, 470.0); };
    constexpr auto k1430 = [](double x, double y) { return brown(x, y, 1430.0, 620.0, 470.0); };
    const QByteArray nominal = property("drone-dji:CalibratedFocalLength", "1400") +
                               property("drone-dji:CalibratedOpticalCenterX", "630") +
                               property("drone-dji:CalibratedOpticalCenterY", "475");
    const QByteArray inMm = property("Camera:PerspectiveFocalLength", "5.6");
    return {
        {"dewarping data", kDewarpData + nominal, k1430},
        {"before the design's", kDewarpData + kPerspective + inMm + kTerms, k1430},
        {"millimetres", kPerspective + kMm + inMm + kTerms, k1400},
        {"millimetres without a unit", kPerspective + inMm + kTerms, k1400},
        {"pixels without a unit",
         kPerspective + property("Camera:PerspectiveFocalLength", "1400") + kTerms, k1400},
        {"fisheye", kFisheye, fisheye},
        {"the design's", nominal,
         [](double x, double y) {
             return Point{630.0 + 1400.0 * x, 475.0 + 1400.0 * y};
         }},
        {"already dewarped", kDewarpData + property("drone-dji:DewarpFlag", "1"),
         [](double x, double y) {
             return Point{620.0 + 1430.0 * x, 470.0 + 1430.0 * y};
         }}};
}

TEST_F(Calibration, RaysLandOnThePixelOfTheMakersFormula)
{
    for (const Convention& c : conventions()) {
        SCOPED_TRACE(c.what);
        const CameraParams landscape = makeCamera(readImage(c.xmp), kPixelSizeMm).params;
        const CameraParams portrait = makeCamera(readImage(c.xmp, true), kPixelSizeMm).params;
        EXPECT_EQ(portrait.imageWidth, static_cast<std::size_t>(kHeight));
        for (const Point& ray : {Point{0.4, 0.1}, Point{-0.3, 0.25}, Point{0.05, -0.35}}) {
            const Point expected = c.project(ray[0], ray[1]);
            const Point point = project(landscape, ray[0], ray[1]);
            EXPECT_NEAR(point[0], expected[0], 1e-6);
            EXPECT_NEAR(point[1], expected[1], 1e-6);
            const Point turned = project(portrait, -ray[1], ray[0]);
            EXPECT_NEAR(turned[0], kHeight - expected[1], 1e-6);
            EXPECT_NEAR(turned[1], expected[0], 1e-6);
        }
    }
}

TEST_F(Calibration, APartOrNonsenseIsNotUsedAndTheLogNamesItAndTheFile)
{
    struct Case
    {
        QByteArray xmp;
        const char* named;
    };
    const QByteArray focal = property("Camera:PerspectiveFocalLength", "5.6");
    const auto dewarp = [](const QByteArray& list) {
        return property("drone-dji:DewarpData", list);
    };
    const Case cases[] = {
        {kPerspective + focal, "Camera:PerspectiveDistortion"},
        {kPerspective + kTerms, "Camera:PerspectiveFocalLength"},
        {kPerspective + kTerms + property("Camera:PerspectiveFocalLength", "-5.6"),
         "Camera:PerspectiveFocalLength"},
        {kPerspective + kTerms + focal + property("Camera:PerspectiveFocalLengthUnits", "inch"),
         "Camera:PerspectiveFocalLengthUnits"},
        {property("Camera:ModelType", "perspective") + kTerms + focal, "Camera:PrincipalPoint"},
        {property("Camera:ModelType", "fisheye") + kPoint, "Camera:FisheyePolynomial"},
        {kFisheye + property("drone-dji:DewarpFlag", "1"), "drone-dji:DewarpFlag"},
        {property("Camera:ModelType", "mirror") + kPoint, "Camera:ModelType"},
        {kTerms, "Camera:ModelType"},
        {dewarp("2019-06-19;1430,1430,0,0,0,0,0,0"), "drone-dji:DewarpData"},
        {dewarp("2019-06-19;1430,1430,0,0,0,0,0,0,0,0"), "drone-dji:DewarpData"},
        {dewarp("2019-06-19;1430,1430,0,nan,0,0,0,0,0"), "drone-dji:DewarpData"},
        {dewarp("1430,1430,0,0,0,0,0x1,0,0"), "drone-dji:DewarpData"},
        {dewarp("d;1430,143,0,0,0,0,0,0,0") + kPerspective + focal + kTerms,
         "drone-dji:DewarpData"},
        {kDewarpData + property("drone-dji:DewarpFlag", "maybe"), "drone-dji:DewarpFlag"},
        {property("drone-dji:CalibratedFocalLength", "1400"),
         "drone-dji:CalibratedOpticalCenterX"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.xmp.constData());
        const log::Capture log;
        EXPECT_FALSE(readImage(c.xmp).calibration);
        const auto records = log.records();
        EXPECT_TRUE(std::any_of(records.begin(), records.end(), [&c](const log::Record& record) {
            return record.text.contains(QLatin1String(c.named)) &&
                   record.text.contains(QLatin1String("/image")); // the file
        }));
    }
}

// 0.8 + 0.3 x - 0.2 x^2 y, at a quarter of the width and half of the height.
TEST_F(Calibration, VignettingAndReadoutAreThoseOfTheMakersFormula)
{
    const QByteArray powers = property("Camera:VignettingPolynomial2DName", "0,0,1,0,2,1");
    const QByteArray polynomial = property("Camera:VignettingPolynomial2D", "0.8, 0.3, -0.2");
    const ExifInfo exif =
        readImage(powers + polynomial + property("Camera:LineReadoutTime", "47500"));
    const CameraParams params = makeCamera(exif, kPixelSizeMm).params;
    EXPECT_NEAR(params.lineReadoutTime, 0.0475, 1e-12);
    ASSERT_EQ(params.vignetting.size(), 1u);
    const Eigen::MatrixXd& c = params.vignetting.begin()->second.coefficients;
    double brightness = 0.0;
    for (Eigen::Index y = 0; y < c.rows(); ++y) {
        for (Eigen::Index x = 0; x < c.cols(); ++x) {
            brightness += c(y, x) * std::pow(0.25 * kWidth, x) * std::pow(0.5 * kHeight, y);
        }
    }
    EXPECT_NEAR(brightness, 0.8 + 0.3 * 0.25 - 0.2 * 0.0625 * 0.5, 1e-12);

    for (const QByteArray& bad :
         {polynomial, powers + property("Camera:VignettingPolynomial2D", "0.8, 0.3"),
          property("Camera:VignettingPolynomial2DName", "0,0,1,0,2.5,1") + polynomial,
          powers + property("Camera:VignettingPolynomial2D", "0.8, nan, -0.2"),
          property("Camera:LineReadoutTime", "-5")}) {
        SCOPED_TRACE(bad.toStdString());
        const ExifInfo refused = readImage(bad);
        EXPECT_TRUE(refused.vignetting.empty());
        EXPECT_EQ(refused.lineReadoutTimeMs, 0.0);
    }
}

TEST_F(Calibration, OfAnotherCameraOrSizeIsRefusedAsAWhole)
{
    const QByteArray list = "d;%1,%1,%2,0,-0.1,0,0,0,0";
    const auto params = [&](const char* f, const char* cx) {
        QByteArray text = list;
        text.replace("%1", f).replace("%2", cx);
        return makeCamera(readImage(property("drone-dji:DewarpData", text)), kPixelSizeMm).params;
    };
    EXPECT_EQ(params("1600", "150").perspective.radialK1, -0.1);
    for (const auto& [f, cx] : {std::pair("1700", "0"), {"1150", "0"}, {"1400", "170"}}) {
        const log::Capture log;
        const CameraParams plain = params(f, cx);
        EXPECT_EQ(plain.perspective.focalLengthMm, kFocalLengthMm);
        EXPECT_EQ(plain.perspective.radialK1, 0.0);
        EXPECT_EQ(plain.principalPointPixel(), (Point{0.5 * kWidth, 0.5 * kHeight}));
        EXPECT_FALSE(log.records().empty());
    }
}

} // namespace
} // namespace lumo::exif
