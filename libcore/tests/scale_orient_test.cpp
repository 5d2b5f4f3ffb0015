// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/init/optimise_rigid_transform_scale_orient.h"
#include "lumo/foundation/log.h"
#include "test_seed.h"

#include <gtest/gtest.h>

#include <limits>
#include <numbers>
#include <random>
#include <stdexcept>

namespace lumo {
namespace {

using Eigen::Vector3d;
using Directions = std::vector<Vector3d>;

/// Counts what the refinement asks of the solver.
class Watched : public OptimiseRigidTransformScaleOrient
{
public:
    using OptimiseRigidTransformScaleOrient::OptimiseRigidTransformScaleOrient;

    int calls = 0;

protected:
    void LevenbergMarquardt(
        void* object, double* x, int n, int m, double tolerance, int verbose) override
    {
        ++calls;
        EXPECT_EQ(n, 3);
        EXPECT_EQ(m % 3, 0);
        EXPECT_EQ(tolerance, 1e-14);
        OptimiseRigidTransformScaleOrient::LevenbergMarquardt(object, x, n, m, tolerance, verbose);
    }
};

RotationMatrix randomRotation(std::mt19937& rng, double largest)
{
    std::uniform_real_distribution<double> angle(-largest, largest);
    RotationMatrix rotation;
    rotation.set(angle(rng), angle(rng) / 2.0, angle(rng));
    return rotation;
}

/// The coordinate axes, `count` directions in turn, as a frame turned by `truth` sees them.
void makeDirections(
    const RotationMatrix& truth, int count, double noise, std::mt19937& rng, Directions& first,
    Directions& second)
{
    std::normal_distribution<double> normal(0.0, noise);
    for (int i = 0; i < count; ++i) {
        first.push_back(Vector3d::Unit(i % 3));
        const Vector3d error(normal(rng), normal(rng), normal(rng));
        second.push_back((truth.transpose() * first.back() + error).normalized());
    }
}

double angleBetween(const RotationMatrix& a, const RotationMatrix& b)
{
    const double cosine = ((a.matrix() * b.matrix().transpose()).trace() - 1.0) / 2.0;
    return std::acos(std::clamp(cosine, -1.0, 1.0));
}

TEST(OptimiseRigidTransformScaleOrient, StartCarriesTheAxesOntoEachOther)
{
    std::mt19937 rng(testSeed());
    for (int trial = 0; trial < 200; ++trial) {
        const RotationMatrix truth = randomRotation(rng, 0.98 * std::numbers::pi);
        Directions first;
        Directions second;
        makeDirections(truth, 1 + trial % 3, 0.0, rng, first, second);
        OptimiseRigidTransformScaleOrient estimate({3.0, 5.0}, {2.0, 2.0}, first, second);
        ASSERT_TRUE(estimate.init());
        for (std::size_t i = 0; i < first.size(); ++i) {
            const Vector3d carried = estimate.getTransform().rotation() * second[i];
            ASSERT_LT((carried - first[i]).norm(), 1e-7) << trial << " axis " << i;
        }
        ASSERT_DOUBLE_EQ(estimate.getTransform().scale(), 2.0);
    }
}

TEST(OptimiseRigidTransformScaleOrient, RefinementFindsTheRotationDespiteAnOutlier)
{
    std::mt19937 rng(testSeed());
    for (int trial = 0; trial < 50; ++trial) {
        const RotationMatrix truth = randomRotation(rng, 1.0);
        Directions first;
        Directions second;
        makeDirections(truth, 12, 0.002, rng, first, second);
        // Not exactly an axis, so it does not reach the start.
        first.push_back(Vector3d(0.6, 0.8, 0.0));
        second.push_back(truth.transpose() * Vector3d(-0.8, 0.6, 0.0));
        Watched estimate({}, {}, first, second);
        ASSERT_TRUE(estimate.init());
        estimate.compute();
        EXPECT_EQ(estimate.calls, 5);
        EXPECT_LT(angleBetween(estimate.getTransform().rotation(), truth), 0.01) << trial;
        EXPECT_LT(estimate.getOriWeights().back(), 1e-3);
        EXPECT_GT(estimate.getOriWeights().front(), 0.9);
        EXPECT_EQ(estimate.getTransform().scale(), 1.0);
        EXPECT_EQ(estimate.getTransform().translation(), Vector3d(Vector3d::Zero()));
    }
}

TEST(OptimiseRigidTransformScaleOrient, OnlyExactAxesGiveAStart)
{
    const Directions first{{0.6, 0.8, 0.0}, {0.0, 0.0, -1.0}};
    const Directions second{{0.8, 0.6, 0.0}, {0.0, 1.0, 0.0}};
    OptimiseRigidTransformScaleOrient estimate({}, {}, first, second);
    ASSERT_TRUE(estimate.init());
    EXPECT_EQ(estimate.getTransform(), math::RigidTransform3D());
    Watched none({4.0}, {8.0}, {}, {});
    ASSERT_TRUE(none.init());
    none.compute();
    EXPECT_EQ(none.calls, 5);
    EXPECT_EQ(none.getTransform(), math::RigidTransform3D({}, Vector3d::Zero(), 0.5));
}

TEST(OptimiseRigidTransformScaleOrient, FunctionsAndWeightsAreThoseOfTheErrorModel)
{
    // Off by 0.04 rad about x, which no axis of the start mends.
    const Directions first{{0.0, 0.6, 0.8}};
    const Directions second{
        {0.0, 0.6 * std::cos(0.04) - 0.8 * std::sin(0.04),
         0.6 * std::sin(0.04) + 0.8 * std::cos(0.04)}};
    OptimiseRigidTransformScaleOrient estimate({}, {}, first, second);
    ASSERT_TRUE(estimate.init());
    const Vector3d e = second[0] - first[0];
    const double variance = e.squaredNorm() / 3.0; // between the bounds
    const Vector3d x = Vector3d::Zero();
    Vector3d f;
    estimate.g(x.data(), f.data());
    double p = 1.0;
    for (Eigen::Index k = 0; k < 3; ++k) {
        const double root = std::sqrt(2.0 * std::numbers::pi * variance);
        const double kernel = std::exp(-e[k] * e[k] / (2.0 * variance));
        EXPECT_NEAR(f[k], -2.0 * std::log(kernel + root * 1e-5), 1e-9) << k;
        p *= kernel / root;
    }
    EXPECT_NEAR(estimate.getOriWeights()[0] / (p / (p + 1e-5)), 1.0, 1e-9);
}

TEST(OptimiseRigidTransformScaleOrient, DerivativesAreThoseOfTheFunctions)
{
    std::mt19937 rng(testSeed());
    std::uniform_real_distribution<double> angle(-3.0, 3.0);
    std::normal_distribution<double> near(0.0, 0.02);
    for (int trial = 0; trial < 100; ++trial) {
        RotationMatrix truth;
        const Vector3d angles(angle(rng), angle(rng), angle(rng));
        truth.set(angles[0], angles[1], angles[2]);
        Directions first;
        Directions second;
        makeDirections(truth, 12, 0.01, rng, first, second);
        OptimiseRigidTransformScaleOrient estimate({}, {}, first, second);
        ASSERT_TRUE(estimate.init());
        const Vector3d x = angles + Vector3d(near(rng), near(rng), near(rng));
        Eigen::MatrixXd jacobian(36, 3);
        estimate.dg(x.data(), jacobian.data());
        for (Eigen::Index j = 0; j < 3; ++j) {
            constexpr double kStep = 1e-6;
            const Vector3d above = x + kStep * Vector3d::Unit(j);
            const Vector3d below = x - kStep * Vector3d::Unit(j);
            Eigen::VectorXd fAbove(36);
            Eigen::VectorXd fBelow(36);
            estimate.g(above.data(), fAbove.data());
            estimate.g(below.data(), fBelow.data());
            const Eigen::VectorXd numeric = (fAbove - fBelow) / (2.0 * kStep);
            ASSERT_LT((numeric - jacobian.col(j)).norm(), 1e-5 * (1.0 + jacobian.col(j).norm()))
                << trial << " angle " << j;
        }
    }
}

TEST(OptimiseRigidTransformScaleOrient, BadInputIsRefused)
{
    const Directions two(2, Vector3d::UnitX());
    const Directions one(1, Vector3d::UnitX());
    const log::Capture logged;
    EXPECT_THROW(OptimiseRigidTransformScaleOrient({1.0}, {}, two, two), std::runtime_error);
    EXPECT_THROW(OptimiseRigidTransformScaleOrient({}, {}, one, two), std::runtime_error);
    EXPECT_TRUE(logged.contains(
        log::Level::Important, "OptimiseRigidTransformScaleOrient length p1 / p2 is different"));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_THROW(OptimiseRigidTransformScaleOrient({1.0}, {nan}, one, one), std::invalid_argument);
    EXPECT_THROW(
        OptimiseRigidTransformScaleOrient({}, {}, one, {{0.0, nan, 1.0}}), std::invalid_argument);
    OptimiseRigidTransformScaleOrient infinite({1.0}, {0.0}, {}, {});
    EXPECT_TRUE(infinite.init());
    EXPECT_TRUE(std::isinf(infinite.getTransform().scale()));
    OptimiseRigidTransformScaleOrient undefined({0.0}, {0.0}, {}, {});
    EXPECT_FALSE(undefined.init());
    EXPECT_EQ(undefined.getTransform(), math::RigidTransform3D());
}

} // namespace
} // namespace lumo
