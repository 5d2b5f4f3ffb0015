// SPDX-License-Identifier: Apache-2.0
#include "lumo/foundation/log.h"
#include "lumo/mathematics/transform_optimisation.h"
#include "test_seed.h"

#include <Eigen/LU>
#include <gtest/gtest.h>

#include <limits>
#include <numbers>
#include <random>
#include <stdexcept>

namespace lumo::math {
namespace {

using Eigen::Vector3d;
using Points = std::vector<Vector3d>;
using transformOptimisation::estimateTransform;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

Vector3d randomVector(std::mt19937& rng)
{
    std::uniform_real_distribution<double> coordinate(-1.0, 1.0);
    return {coordinate(rng), coordinate(rng), coordinate(rng)};
}

struct Problem
{
    explicit Problem(std::mt19937& rng, std::size_t n, double size = 1.0, double offset = 0.0)
    {
        const Vector3d angles = randomVector(rng) * std::numbers::pi;
        RotationMatrix rotation;
        rotation.set(angles[0], angles[1], angles[2]);
        truth = {rotation, size * randomVector(rng) + Vector3d::Constant(offset), size};
        for (std::size_t i = 0; i < n; ++i) {
            points2.push_back(randomVector(rng));
            points1.push_back(truth.transform(points2.back()));
            sigmas.push_back(Vector3d::Constant(size));
        }
    }

    bool solve(RigidTransform3D& result) const
    {
        return estimateTransform(points1, points2, sigmas, result);
    }

    RigidTransform3D truth;
    Points points1, points2, sigmas;
};

TEST(EstimateTransform, RecoversExactPointsOfAnySizeAndOffset)
{
    std::mt19937 rng(testSeed());
    for (const double size : {1e-6, 1.0, 100.0, 1e6}) {
        for (const double offset : {0.0, 5e6 * std::min(size, 1.0)}) {
            for (const std::size_t n : {3u, 4u, 5u, 50u}) {
                SCOPED_TRACE(testing::Message() << size << " at " << offset << ", n " << n);
                const Problem problem(rng, n, size, offset);
                RigidTransform3D result;
                ASSERT_TRUE(problem.solve(result));
                for (const Vector3d& p : problem.points2) {
                    const Vector3d error = result.transform(p) - problem.truth.transform(p);
                    // Rounding of coordinates and, with 3 points, of a flat triangle.
                    EXPECT_LT(error.norm(), 1e-9 * size + 1e-14 * offset);
                }
            }
        }
    }
}

TEST(EstimateTransform, NoNeighbourFitsTheWeightedPointsBetter)
{
    std::mt19937 rng(testSeed());
    std::normal_distribution<double> noise(0.0, 0.05);
    for (int trial = 0; trial < 100; ++trial) {
        Problem problem(rng, 20);
        for (std::size_t i = 0; i < 20; ++i) {
            problem.points1[i] += Vector3d(noise(rng), noise(rng), noise(rng));
            problem.sigmas[i] = Vector3d::Constant(i % 2 == 0 ? 1.0 : 0.1);
        }
        const auto cost = [&problem](const RigidTransform3D& transform) {
            double sum = 0.0;
            for (std::size_t i = 0; i < 20; ++i) {
                const Vector3d e = problem.points1[i] - transform.transform(problem.points2[i]);
                sum += e.squaredNorm() / std::pow(problem.sigmas[i][0], 2);
            }
            return sum;
        };
        RigidTransform3D best;
        ASSERT_TRUE(problem.solve(best));
        for (Eigen::Index k = 0; k < 7; ++k) {
            for (const double step : {-1e-4, 1e-4}) {
                RigidTransform3D neighbour;
                neighbour.set(best.parameters() + step * Eigen::VectorXd::Unit(7, k));
                ASSERT_LT(cost(best), cost(neighbour)) << trial << " parameter " << k;
            }
        }
    }
}

TEST(EstimateTransform, MirroredPointsGetARotation)
{
    std::mt19937 rng(testSeed());
    Problem problem(rng, 10);
    for (Vector3d& point : problem.points1) {
        point[2] = -point[2];
    }
    RigidTransform3D result;
    ASSERT_TRUE(problem.solve(result));
    EXPECT_GT(result.rotation().matrix().determinant(), 0.0);
    EXPECT_GT(result.scale(), 0.0);
}

TEST(EstimateTransform, WhatDeterminesNoTransformIsRefusedAndChangesNothing)
{
    std::mt19937 rng(testSeed());
    using Change = void (*)(Problem&);
    const auto refused = [&rng](double offset, Change change) {
        Problem problem(rng, 5, 1.0, offset);
        change(problem);
        RigidTransform3D result = problem.truth;
        return !problem.solve(result) && result == problem.truth;
    };
    for (const double offset : {0.0, 5e6}) {
        EXPECT_TRUE(refused(offset, [](Problem& p) { p.points1.assign(5, p.points1[0]); }))
            << "coincident";
        EXPECT_TRUE(refused(offset, [](Problem& p) {
            for (std::size_t i = 0; i < 5; ++i) {
                p.points1[i] = p.points1[0] + static_cast<double>(i * i) * Vector3d(.1, .2, .7);
            }
        })) << "collinear";
    }
    const Change changes[] = {
        [](Problem& p) { p.points2.assign(5, p.points2[0]); },
        [](Problem& p) {
            p.points1.resize(2);
            p.points2.resize(2);
            p.sigmas.resize(2);
        },
        [](Problem& p) { p.points2.pop_back(); },
        [](Problem& p) { p.sigmas.pop_back(); },
        [](Problem& p) { p.points1[3][1] = kNaN; },
        [](Problem& p) { p.points2[4][0] = kInfinity; },
        [](Problem& p) { p.sigmas[2][2] = 0.0; },
        [](Problem& p) { p.sigmas[2][2] = -1.0; },
        [](Problem& p) { p.sigmas[0][0] = kNaN; },
    };
    for (std::size_t i = 0; i < std::size(changes); ++i) {
        EXPECT_TRUE(refused(0.0, changes[i])) << i;
    }
}

TEST(RigidTransform3D, SevenParametersInOrder)
{
    Eigen::VectorXd parameters(7);
    parameters << 0.1, 0.2, 0.3, 4, 5, 6, 2;
    RigidTransform3D transform;
    transform.set(parameters);
    EXPECT_EQ(transform.parameters(), parameters);
    RotationMatrix rotation;
    rotation.set(0.1, 0.2, 0.3);
    const Vector3d p(1, -2, 3);
    EXPECT_LT((transform.transform(p) - 2 * (rotation * p) - Vector3d(4, 5, 6)).norm(), 1e-14);
    EXPECT_THROW(transform.set(Eigen::VectorXd::Zero(6)), std::invalid_argument);
    EXPECT_EQ(transform.parameters(), parameters);
    EXPECT_TRUE(transform.isFinite());
    for (Eigen::Index i = 0; i < parameters.size(); ++i) {
        Eigen::VectorXd broken = parameters;
        broken[i] = kNaN;
        transform.set(broken);
        EXPECT_FALSE(transform.isFinite()) << i;
    }
    RigidTransform3D parts;
    parts.setRotation(rotation);
    parts.setTranslation({4, 5, 6});
    parts.setScale(2);
    EXPECT_EQ(parts.parameters(), parameters);
    EXPECT_EQ(parts, RigidTransform3D(rotation, {4, 5, 6}, 2));
}

} // namespace
} // namespace lumo::math
