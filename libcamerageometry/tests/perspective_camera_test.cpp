// SPDX-License-Identifier: Apache-2.0
#include "lumo/camerageometry/perspective_camera_0.h"
#include "lumo/camerageometry/perspective_camera_3.h"
#include "lumo/camerageometry/perspective_camera_5.h"
#include "test_seed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>

namespace lumo {
namespace {

using Eigen::Vector2d;
using Eigen::Vector3d;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
const Vector2d kCentre(500.0, 400.0);

PerspectiveCamera3 radialCamera(const std::array<double, 3>& radial)
{
    return {1001, 801, kCentre, 1000.0, radial};
}

TEST(PerspectiveCamera, PixelsAreThoseOfBrownsFormula)
{
    // By hand for x = 1/4, y = 1/2, r2 = 5/16.
    const Vector3d point(1.0, 2.0, 4.0);
    const std::array<double, 3> radial{-0.2, 0.1, -0.05};
    const PerspectiveCamera0 none(1001, 801, kCentre, 1000.0);
    EXPECT_LT((none.project(point).value() - Vector2d(750.0, 900.0)).norm(), 1e-11);

    // Radial factor 1 - 0.0625 + 0.009765625 - 0.00152587890625.
    const Vector2d withRadial(736.4349365234375, 872.869873046875);
    EXPECT_LT((radialCamera(radial).project(point).value() - withRadial).norm(), 1e-11);

    // T1 = 0.01, T2 = 0.02: dx = 0.0025 + 0.00875, dy = 0.008125 + 0.005.
    const PerspectiveCamera5 both(1001, 801, kCentre, 1000.0, radial, {0.01, 0.02});
    const Vector2d withBoth = withRadial + Vector2d(11.25, 13.125);
    EXPECT_LT((both.project(point).value() - withBoth).norm(), 1e-11);
}

TEST(PerspectiveCamera, AxesPointRightAndDown)
{
    const PerspectiveCamera0 camera(1001, 801, kCentre, 1000.0);
    const Vector3d topLeft = camera.backProject({0.0, 0.0}).value();
    EXPECT_LT((topLeft - Vector3d(-0.5, -0.4, 1.0).normalized()).norm(), 1e-15);
}

TEST(PerspectiveCamera, NothingComesFromBeyondTheFold)
{
    // r - r^3 / 2 is largest at r = sqrt(2/3).
    const PerspectiveCamera3 camera = radialCamera({-0.5, 0.0, 0.0});
    const double fold = std::sqrt(2.0 / 3.0);
    const double largest = fold * 2.0 / 3.0;
    EXPECT_NEAR(camera.distortion().limit(), fold, 1e-15);
    EXPECT_TRUE(camera.project({0.0, fold - 1e-9, 1.0}));
    EXPECT_FALSE(camera.project({0.0, fold + 1e-9, 1.0}));
    EXPECT_FALSE(camera.project({0.0, 5.0, 1.0}));
    EXPECT_FALSE(camera.backProject(kCentre + Vector2d(1000.0 * largest + 1e-6, 0.0)));
    const auto ray = camera.backProject(kCentre + Vector2d(1000.0 * largest - 1e-6, 0.0));
    ASSERT_TRUE(ray);
    EXPECT_LT(ray->x() / ray->z(), fold);
    EXPECT_GT(ray->x() / ray->z(), fold - 1e-3);
}

TEST(PerspectiveCamera, TheFieldEndsAtTheFirstFoldAlthoughTheLensGrowsAgain)
{
    // d(r g)/dr = (1 - r2) (1 - r2 / 4) = 1 - 5/4 r2 + 1/4 r2^2.
    const BrownDistortion twoFolds({-1.25 / 3.0, 0.25 / 5.0, 0.0}, {0.0, 0.0});
    EXPECT_NEAR(twoFolds.limit(), 1.0, 1e-12);
    EXPECT_FALSE(twoFolds.distort({3.0, 0.0}));

    // A lens that always grows has no fold; 1000 is where the model ends.
    EXPECT_EQ(BrownDistortion({0.1, 0.1, 0.1}, {0.0, 0.0}).limit(), 1000.0);
    EXPECT_TRUE(std::isinf(BrownDistortion({0.0, 0.0, 0.0}, {0.0, 0.0}).limit()));
}

TEST(PerspectiveCamera, TangentialTermsLimitTheFieldWhereTheMapFolds)
{
    // On the x axis with T2 = -1/6 the map is x - x^2 / 2, largest at x = 1.
    const BrownDistortion decentred({0.0, 0.0, 0.0}, {0.0, -1.0 / 6.0});
    EXPECT_NEAR(decentred.limit(), 1.0, 1e-12);
    // Here the equation of the inverse has no direction at r = limit.
    const Vector2d distorted(-1.0 / 6.0, 0.0);
    const auto ideal = decentred.undistort(distorted);
    ASSERT_TRUE(ideal);
    EXPECT_LT((decentred.distort(*ideal).value() - distorted).norm(), 1e-15);
}

TEST(PerspectiveCamera, EveryDistortionIsOneToOneInItsDisc)
{
    std::mt19937 rng(testSeed());
    std::normal_distribution<double> number;
    for (int trial = 0; trial < 2000; ++trial) {
        const double size = std::exp(2.0 * number(rng) - 2.0);
        const auto next = [&] { return size * number(rng); };
        const BrownDistortion lens({next(), next(), next()}, {next(), next()});
        const double radius = std::min(lens.limit(), 2.0);
        for (int point = 0; point < 10; ++point) {
            const Vector2d ideal = radius * std::tanh(std::abs(number(rng))) *
                                   Vector2d(number(rng), number(rng)).normalized();
            const Vector2d distorted = lens.distort(ideal).value();
            const auto back = lens.undistort(distorted);
            ASSERT_TRUE(back) << ideal.transpose();
            ASSERT_LT((*back - ideal).norm(), 1e-6 * radius) << ideal.transpose();
        }
    }
}

TEST(PerspectiveCamera, CoefficientsKeepTheirPlaces)
{
    const PerspectiveCamera5 five(1001, 801, kCentre, 1000.0, {1.0, 2.0, 3.0}, {4.0, 5.0});
    EXPECT_EQ(
        (std::array{five.getRD1(), five.getRD2(), five.getRD3(), five.getTD1(), five.getTD2()}),
        (std::array{1.0, 2.0, 3.0, 4.0, 5.0}));
    const PerspectiveCamera3 three = radialCamera({1.0, 2.0, 3.0});
    EXPECT_EQ(
        (std::array{three.getRD1(), three.getRD2(), three.getRD3()}), (std::array{1.0, 2.0, 3.0}));
}

TEST(PerspectiveCamera, ImpossibleParametersAreRefused)
{
    const auto make = [](std::size_t width, std::size_t height, const Vector2d& centre,
                         double focalLength) {
        return PerspectiveCamera0(width, height, centre, focalLength);
    };
    EXPECT_THROW(make(0, 801, kCentre, 1000.0), std::invalid_argument);
    EXPECT_THROW(make(1001, 0, kCentre, 1000.0), std::invalid_argument);
    EXPECT_THROW(make(1001, 801, {kNaN, 0.0}, 1000.0), std::invalid_argument);
    for (const double focalLength : {0.0, -1.0, kNaN, std::numeric_limits<double>::infinity()}) {
        EXPECT_THROW(make(1001, 801, kCentre, focalLength), std::invalid_argument);
    }
    EXPECT_THROW(BrownDistortion({0.0, kNaN, 0.0}, {0.0, 0.0}), std::invalid_argument);
    EXPECT_THROW(BrownDistortion({0.0, 0.0, 0.0}, {0.0, kNaN}), std::invalid_argument);
}

} // namespace
} // namespace lumo
