// SPDX-License-Identifier: Apache-2.0
#include "lumo/camerageometry/fisheye_camera.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <stdexcept>
#include <vector>

namespace lumo {
namespace {

using Eigen::Vector2d;
using Eigen::Vector3d;

const Vector2d kCentre(600.0, 500.0);
constexpr FisheyeCamera::Affine kRound{1000.0, 0.0, 0.0, 1000.0};

FisheyeCamera fisheye(
    const std::vector<double>& polynomial, const FisheyeCamera::Affine& affine = kRound)
{
    return {1201, 1001, kCentre, polynomial, affine};
}

/// A ray to the right of the axis.
Vector3d rayAt(double theta)
{
    const double angle = theta * std::numbers::pi / 2.0;
    return {std::sin(angle), 0.0, std::cos(angle)};
}

TEST(FisheyeCamera, PixelsAreThoseOfThePublishedFormula)
{
    // By hand: 45 degrees, theta = 1/2, rho = 0.5 + 0.025 - 0.0125 = 0.5125
    // along (3, 4) / 5: (0.3075, 0.41), then the affine map.
    const FisheyeCamera camera = fisheye({0.0, 1.0, 0.1, -0.1}, {1000.0, 2.0, -3.0, 1010.0});
    const Vector2d pixel = camera.project({3.0, 4.0, 5.0}).value();
    EXPECT_LT((pixel - kCentre - Vector2d(308.32, 413.1775)).norm(), 1e-11);
    EXPECT_LT(
        (camera.backProject(pixel).value() - Vector3d(3.0, 4.0, 5.0).normalized()).norm(), 1e-14);
    EXPECT_EQ(camera.lensType(), AbstractCamera::LensType::Fisheye);
}

TEST(FisheyeCamera, SeesBehindItself)
{
    const FisheyeCamera camera = fisheye({0.0, 1.0});
    const Vector2d pixel = camera.project({0.0, 1.0, -1.0}).value();
    EXPECT_LT((pixel - kCentre - Vector2d(0.0, 1500.0)).norm(), 1e-11);
    EXPECT_TRUE(camera.backProject(kCentre + Vector2d(1999.0, 0.0)));
    EXPECT_FALSE(camera.backProject(kCentre + Vector2d(2001.0, 0.0)));
}

TEST(FisheyeCamera, NothingComesFromBeyondTheFold)
{
    // theta - theta^3 / 3 is largest, 2/3, at theta = 1.
    const FisheyeCamera camera = fisheye({0.0, 1.0, 0.0, -1.0 / 3.0});
    EXPECT_NEAR(camera.maximumTheta(), 1.0, 1e-12);
    EXPECT_TRUE(camera.project(rayAt(0.999)));
    EXPECT_FALSE(camera.project(rayAt(1.001)));
    EXPECT_TRUE(camera.backProject(kCentre + Vector2d(666.0, 0.0)));
    EXPECT_FALSE(camera.backProject(kCentre + Vector2d(667.0, 0.0)));
}

TEST(FisheyeCamera, AConstantTermLeavesAHoleAtTheAxis)
{
    const FisheyeCamera hole = fisheye({0.01, 1.0});
    EXPECT_FALSE(hole.project({0.0, 0.0, 1.0}));
    EXPECT_FALSE(hole.backProject(kCentre + Vector2d(9.9, 0.0)));
    EXPECT_TRUE(hole.backProject(kCentre + Vector2d(10.1, 0.0)));

    const FisheyeCamera blind = fisheye({-0.01, 1.0});
    EXPECT_FALSE(blind.project(rayAt(0.0099)));
    EXPECT_TRUE(blind.project(rayAt(0.0101)));
    EXPECT_FALSE(blind.backProject(kCentre));
}

TEST(FisheyeCamera, ImpossibleParametersAreRefused)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::vector<std::vector<double>> badPolynomials{
        {}, {0.0}, {0.0, nan}, {0.0, 0.0, 1.0}, {0.0, -1.0}, {-3.0, 1.0}};
    for (const std::vector<double>& polynomial : badPolynomials) {
        EXPECT_THROW(fisheye(polynomial), std::invalid_argument)
            << testing::PrintToString(polynomial);
    }
    const FisheyeCamera::Affine badMaps[] = {
        {0.0, 0.0, 0.0, 0.0},
        {1000.0, 0.0, 0.0, 0.0},
        {10.0, 20.0, 30.0, 60.0},
        {nan, 0.0, 0.0, 1.0}};
    for (const FisheyeCamera::Affine& affine : badMaps) {
        EXPECT_THROW(fisheye({0.0, 1.0}, affine), std::invalid_argument) << affine.c;
    }
}

} // namespace
} // namespace lumo
