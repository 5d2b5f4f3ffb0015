// SPDX-License-Identifier: Apache-2.0
#include "lumo/mathematics/rotation_matrix.h"
#include "test_seed.h"

#include <Eigen/Geometry>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>
#include <stdexcept>

namespace lumo {
namespace {

using Eigen::AngleAxisd;
using Eigen::Matrix3d;
using Eigen::Vector3d;

constexpr double kPi = std::numbers::pi;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr int kTrials = 1000;

RotationMatrix rotation(double omega, double phi, double kappa)
{
    RotationMatrix result;
    result.set(omega, phi, kappa);
    return result;
}

Vector3d randomAngles(std::mt19937& rng)
{
    std::uniform_real_distribution<double> turn(-kPi, kPi);
    return {turn(rng), turn(rng) / 2.0, turn(rng)};
}

RotationMatrix randomRotation(std::mt19937& rng)
{
    const Vector3d angles = randomAngles(rng);
    return rotation(angles[0], angles[1], angles[2]);
}

double largestDifference(const Matrix3d& a, const Matrix3d& b)
{
    return (a - b).cwiseAbs().maxCoeff();
}

TEST(RotationMatrix, AnglesTurnTheFrameAboutXThenNewYThenNewZ)
{
    std::mt19937 rng(testSeed());
    for (int trial = 0; trial < kTrials; ++trial) {
        const Vector3d a = randomAngles(rng);
        const Matrix3d pose =
            (AngleAxisd(a[0], Vector3d::UnitX()) * AngleAxisd(a[1], Vector3d::UnitY()) *
             AngleAxisd(a[2], Vector3d::UnitZ()))
                .toRotationMatrix();
        const RotationMatrix r = rotation(a[0], a[1], a[2]);
        ASSERT_LT(largestDifference(r.matrix(), pose.transpose()), 1e-14);
        ASSERT_EQ(r.angles(), a);
        RotationMatrix relative;
        relative.setOmegaPhiKappaRelative(a[0], a[1], a[2]);
        ASSERT_LT(largestDifference(relative.matrix(), pose), 1e-14);
    }
}

TEST(RotationMatrix, SignsAreThoseOfTheWrittenFormula)
{
    // By hand: sin = 0.6, 0.28, 0.8 and cos = 0.8, 0.96, 0.6.
    const RotationMatrix r = rotation(std::asin(0.6), std::asin(0.28), std::asin(0.8));
    Matrix3d expected;
    expected << 0.576, 0.7408, 0.3456, -0.768, 0.3456, 0.5392, 0.28, -0.576, 0.768;
    EXPECT_LT(largestDifference(r.matrix(), expected), 1e-15);
}

TEST(RotationMatrix, MatrixGivesBackAnglesInRange)
{
    std::mt19937 rng(testSeed());
    for (int trial = 0; trial < kTrials; ++trial) {
        const RotationMatrix r = randomRotation(rng);
        RotationMatrix back = randomRotation(rng);
        back.set(r.matrix());
        ASSERT_LT(largestDifference(back.matrix(), r.matrix()), 1e-14);
        // The angles themselves lose digits as cos phi gets small.
        ASSERT_LT((back.angles() - r.angles()).cwiseAbs().maxCoeff(), 1e-13 / std::cos(r.phi()));
    }
    const RotationMatrix wrapped = rotation(0.1, kPi - 0.2, 0.3).transpose().transpose();
    EXPECT_LT((wrapped.angles() - Vector3d(0.1 - kPi, 0.2, 0.3 - kPi)).norm(), 1e-14);
}

TEST(RotationMatrix, RelativeAnglesComeBackThroughTheTranspose)
{
    std::mt19937 rng(testSeed());
    for (int trial = 0; trial < kTrials; ++trial) {
        const Vector3d angles = randomAngles(rng) * 0.98;
        RotationMatrix r;
        r.setOmegaPhiKappaRelative(angles[0], angles[1], angles[2]);
        const Vector3d degrees = r.transpose().eulerAnglesAsDegree();
        ASSERT_LT((degrees - angles * 180.0 / kPi).cwiseAbs().maxCoeff(), 1e-9);
    }
}

TEST(RotationMatrix, IsReproducedAtAndNearGimbalLock)
{
    std::mt19937 rng(testSeed());
    for (const double sign : {-1.0, 1.0}) {
        for (const double distance : {0.0, 1e-16, 1e-15, 3e-14, 1e-12, 1e-9, 1e-6, 1e-3}) {
            SCOPED_TRACE(testing::Message() << "phi " << sign << " pi/2, off by " << distance);
            const Vector3d angles = randomAngles(rng);
            const RotationMatrix r = rotation(angles[0], sign * (kPi / 2 - distance), angles[2]);
            RotationMatrix back;
            back.set(r.matrix());
            EXPECT_LT(largestDifference(back.matrix(), r.matrix()), 1e-13);
            // Rounding leaves little of the small entries that hold omega and kappa.
            const RotationMatrix other = randomRotation(rng);
            const Matrix3d rounded = (other.transpose() * (other * r)).matrix();
            EXPECT_LT(largestDifference(rounded, r.matrix()), 1e-13);
            EXPECT_NEAR(back.phi(), r.phi(), 1e-13);
            if (distance < 1e-14) {
                EXPECT_EQ(back.kappa(), 0.0);
                const double rest = back.omega() - (angles[0] + sign * angles[2]);
                EXPECT_NEAR(std::remainder(rest, 2 * kPi), 0.0, 1e-13);
            }
        }
    }
}

TEST(RotationMatrix, AngleAxisTurnsRightHanded)
{
    std::mt19937 rng(testSeed());
    std::uniform_real_distribution<double> turn(-2 * kPi, 2 * kPi);
    for (int trial = 0; trial < kTrials; ++trial) {
        const double angle = turn(rng);
        const Vector3d axis = randomRotation(rng) * Vector3d::UnitX();
        RotationMatrix r;
        r.setAngleAxis(axis, std::cos(angle), std::sin(angle));
        ASSERT_LT(largestDifference(r.matrix(), AngleAxisd(angle, axis).toRotationMatrix()), 1e-13);
    }
}

TEST(RotationMatrix, ProductsAndTransposesAreThoseOfTheMatrices)
{
    std::mt19937 rng(testSeed());
    for (int trial = 0; trial < kTrials; ++trial) {
        const RotationMatrix a = randomRotation(rng);
        const RotationMatrix b = randomRotation(rng);
        const Vector3d v = randomAngles(rng);
        ASSERT_LT(((a * b) * v - a * (b * v)).norm(), 1e-13);
        ASSERT_LT(largestDifference((a * b).matrix(), a.matrix() * b.matrix()), 1e-13);
        ASSERT_LT(largestDifference((a * a.transpose()).matrix(), Matrix3d::Identity()), 1e-13);
    }
}

TEST(RotationMatrix, WhatIsNoRotationIsRefusedAndChangesNothing)
{
    RotationMatrix r = rotation(0.1, 0.2, 0.3);
    const RotationMatrix before = r;
    Matrix3d reflection = Matrix3d::Identity();
    reflection(2, 2) = -1.0;
    Matrix3d sheared = Matrix3d::Identity();
    sheared(0, 1) = 1e-5;
    for (const Matrix3d& bad :
         {reflection, sheared, Matrix3d(1.00001 * before.matrix()), Matrix3d(Matrix3d::Zero()),
          Matrix3d(Matrix3d::Constant(kNaN))}) {
        EXPECT_THROW(r.set(bad), std::invalid_argument) << bad;
    }
    const Vector3d x = Vector3d::UnitX();
    EXPECT_THROW(r.setAngleAxis(1.001 * x, 0.6, 0.8), std::invalid_argument);
    EXPECT_THROW(r.setAngleAxis(Vector3d::Zero(), 0.6, 0.8), std::invalid_argument);
    EXPECT_THROW(r.setAngleAxis(kNaN * x, 0.6, 0.8), std::invalid_argument);
    EXPECT_THROW(r.setAngleAxis(x, 0.6, 0.81), std::invalid_argument);
    EXPECT_THROW(r.setAngleAxis(x, kNaN, 0.8), std::invalid_argument);
    EXPECT_EQ(r, before);
}

TEST(RotationMatrix, AnglesThatAreNotFiniteShowInTheMatrix)
{
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(rotation(kNaN, 0.0, 0.0).matrix().hasNaN());
    EXPECT_TRUE(rotation(0.0, infinity, 0.0).matrix().hasNaN());
    EXPECT_TRUE((rotation(0.0, 0.0, kNaN) * RotationMatrix()).matrix().hasNaN());
}

} // namespace
} // namespace lumo
