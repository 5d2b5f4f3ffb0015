// SPDX-License-Identifier: Apache-2.0
#include "lumo/camerageometry/fisheye_camera.h"
#include "lumo/camerageometry/perspective_camera_0.h"
#include "lumo/camerageometry/perspective_camera_3.h"
#include "lumo/camerageometry/perspective_camera_5.h"
#include "test_seed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <string>

namespace lumo {
namespace {

using Eigen::Vector2d;
using Eigen::Vector3d;

constexpr int kTrials = 2000;

struct LensCase
{
    std::string name;
    std::shared_ptr<const AbstractCamera> camera;
};

/// What every lens model must obey, for any parameters.
class CameraLaws : public testing::TestWithParam<LensCase>
{
protected:
    const AbstractCamera& camera() const { return *GetParam().camera; }

    double width() const { return static_cast<double>(camera().imageWidth()); }
    double height() const { return static_cast<double>(camera().imageHeight()); }
    double tolerance() const { return 1e-9 * std::max(width(), height()); }

    /// A pixel of an area `times` as large as the image in each direction.
    Vector2d randomPixel(double times)
    {
        std::uniform_real_distribution<double> part(0.5 - times / 2, 0.5 + times / 2);
        return {part(m_rng) * width() - 0.5, part(m_rng) * height() - 0.5};
    }

    Vector3d randomDirection()
    {
        std::normal_distribution<double> component;
        return Vector3d(component(m_rng), component(m_rng), component(m_rng)).normalized();
    }

    void expectRoundTrip(const Vector2d& pixel) const
    {
        const auto ray = camera().backProject(pixel);
        ASSERT_TRUE(ray) << pixel.transpose();
        ASSERT_NEAR(ray->norm(), 1.0, 1e-15);
        const auto back = camera().project(*ray);
        ASSERT_TRUE(back) << pixel.transpose();
        ASSERT_LT((*back - pixel).norm(), tolerance()) << pixel.transpose();
    }

private:
    std::mt19937 m_rng{testSeed()};
};

TEST_P(CameraLaws, EveryPixelOfTheImageHasARayThatFallsOnIt)
{
    for (const double u : {-0.5, width() - 0.5}) {
        for (const double v : {-0.5, height() - 0.5}) {
            expectRoundTrip({u, v});
        }
    }
    for (int trial = 0; trial < kTrials && !HasFatalFailure(); ++trial) {
        expectRoundTrip(randomPixel(1.0));
    }
}

TEST_P(CameraLaws, PixelsFarOutsideHaveNoRayOrOneThatFallsOnThem)
{
    for (int trial = 0; trial < kTrials && !HasFatalFailure(); ++trial) {
        const Vector2d pixel = randomPixel(5.0);
        if (camera().backProject(pixel)) {
            expectRoundTrip(pixel);
        }
    }
}

TEST_P(CameraLaws, RaysThatProjectComeBackAsTheSameRay)
{
    int projected = 0;
    for (int trial = 0; trial < kTrials; ++trial) {
        const Vector3d direction = randomDirection();
        const auto pixel = camera().project(direction);
        if (!pixel) {
            continue;
        }
        ++projected;
        const auto ray = camera().backProject(*pixel);
        ASSERT_TRUE(ray) << direction.transpose();
        // Close to a fold the pixel determines the ray to half its digits
        // only; a ray from beyond the fold would be far off.
        ASSERT_LT((*ray - direction).norm(), 1e-6) << direction.transpose();
        ASSERT_LT((*camera().project(*ray) - *pixel).norm(), 1e-12 * pixel->norm() + tolerance());
    }
    EXPECT_GT(projected, kTrials / 50);
}

TEST_P(CameraLaws, AllPointsOfARayShareAPixel)
{
    for (int trial = 0; trial < kTrials; ++trial) {
        const Vector3d ray = camera().backProject(randomPixel(1.0)).value();
        const Vector2d pixel = camera().project(ray).value();
        for (const double distance : {1e-150, 1e-3, 7.0, 1e150}) {
            ASSERT_LT((camera().project(distance * ray).value() - pixel).norm(), tolerance());
        }
    }
}

TEST_P(CameraLaws, TheFocalLengthIsTheScaleAtTheAxis)
{
    // Just beside the axis, which not every fisheye lens sees.
    constexpr double kNear = 2e-4;
    constexpr double kFar = 3e-4;
    const auto scaleAlong = [&](const Vector3d& across) -> Vector2d {
        const auto near = camera().project(Vector3d::UnitZ() + kNear * across).value();
        const auto far = camera().project(Vector3d::UnitZ() + kFar * across).value();
        return (far - near) / (kFar - kNear);
    };
    const Vector2d right = scaleAlong(Vector3d::UnitX());
    const Vector2d down = scaleAlong(Vector3d::UnitY());
    const double area = std::abs(right.x() * down.y() - right.y() * down.x());
    EXPECT_NEAR(std::sqrt(area), camera().focalLength(), 1e-3 * camera().focalLength());
}

TEST_P(CameraLaws, WhatHasNoDirectionHasNoImage)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_FALSE(camera().project(Vector3d::Zero()));
    EXPECT_FALSE(camera().project({0.0, 0.0, -1.0}));
    EXPECT_FALSE(camera().project({1.0, nan, 1.0}));
    EXPECT_FALSE(camera().project({1.0, 0.0, infinity}));
    EXPECT_FALSE(camera().backProject({nan, 0.0}));
    EXPECT_FALSE(camera().backProject({infinity, infinity}));
}

std::vector<LensCase> lensCases()
{
    const Vector2d centre(2731.4, 1840.7);
    const auto radial = [&](const std::array<double, 3>& k) {
        return std::make_shared<PerspectiveCamera3>(5472, 3648, centre, 3666.7, k);
    };
    const auto tangential = [&](const std::array<double, 3>& k, const std::array<double, 2>& t) {
        return std::make_shared<PerspectiveCamera5>(5472, 3648, centre, 3666.7, k, t);
    };
    const auto fisheye = [](const std::vector<double>& p, const FisheyeCamera::Affine& affine) {
        return std::make_shared<FisheyeCamera>(4000, 3000, Vector2d(1993.5, 1521.2), p, affine);
    };
    return {
        {"Pinhole", std::make_shared<PerspectiveCamera0>(5472, 3648, centre, 3666.7)},
        {"Radial", radial({-0.008, 0.012, -0.01})},
        {"StrongBarrel", radial({-0.27, 0.11, -0.03})},
        {"Pincushion", radial({0.3, 0.2, 0.1})},
        {"Brown", tangential({-0.27, 0.11, -0.03}, {6e-4, -1.3e-3})},
        {"StronglyDecentred", tangential({0.02, 0.01, 0.0}, {-0.05, 0.06})},
        {"TangentialOnly", tangential({0.0, 0.0, 0.0}, {0.01, 0.0})},
        {"Equidistant", fisheye({0.0, 1.0}, {2500.0, 0.0, 0.0, 2500.0})},
        {"Fisheye", fisheye({0.0, 1.0, -0.012, -0.06, -0.15}, {3400.0, 2.0, -3.0, 3390.0})},
        {"WideFisheye", fisheye({0.0, 1.0, 0.05, -0.08}, {1650.0, 40.0, -40.0, 1650.0})},
        {"MirroredFisheye", fisheye({0.0, 1.0, 0.0, -0.04}, {-2500.0, 0.0, 0.0, 2500.0})},
        {"FisheyeWithBlindAxis", fisheye({-1e-4, 1.0, 0.03}, {2500.0, 0.0, 0.0, 2500.0})}};
}

INSTANTIATE_TEST_SUITE_P(
    Lenses, CameraLaws, testing::ValuesIn(lensCases()),
    [](const testing::TestParamInfo<LensCase>& lens) { return lens.param.name; });

} // namespace
} // namespace lumo
