// SPDX-License-Identifier: Apache-2.0
#include "lumo/optimisation/gauss_mixture_model.h"
#include "test_seed.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <stdexcept>

namespace lumo::gaussMixtureModel {
namespace {

using Eigen::Vector3d;
using Residuals = std::vector<Vector3d>;

struct Mixture
{
    double outlierShare;
    Vector3d sigma;
    double box; ///< half the width of the outliers' cube
};

class NoiseAndOutliers : public testing::TestWithParam<Mixture>
{};

TEST_P(NoiseAndOutliers, AreThoseThatMadeTheResiduals)
{
    const auto& [share, sigma, box] = GetParam();
    std::mt19937 rng(testSeed());
    std::normal_distribution<double> normal;
    std::uniform_real_distribution<double> uniform(-box, box);
    constexpr std::size_t kCount = 4000;
    Residuals residuals;
    const auto outliers = static_cast<std::size_t>(share * kCount);
    for (std::size_t i = 0; i < kCount; ++i) {
        residuals.emplace_back(
            i < outliers
                ? Vector3d(uniform(rng), uniform(rng), uniform(rng))
                : Vector3d(
                      sigma.array() * Vector3d(normal(rng), normal(rng), normal(rng)).array()));
    }
    std::vector<double> weights(kCount, 0.0); // what they hold does not matter
    const auto [noise, pOut] = estimateNoiseAndOutlierProbability(residuals, weights);
    for (Eigen::Index k = 0; k < 3; ++k) {
        // 8 standard deviations of a variance from 2,000 samples, and some
        // outliers among the inliers where the box is small.
        EXPECT_NEAR(noise.variance()[k] / (sigma[k] * sigma[k]), 1.0, 0.26) << k;
    }
    const double inliers = std::accumulate(weights.begin(), weights.end(), 0.0);
    EXPECT_NEAR(inliers / kCount, 1.0 - share, 0.02);
    Eigen::Array3d squares(0, 0, 0);
    Eigen::Array3d lowest(0, 0, 0);
    Eigen::Array3d highest(0, 0, 0);
    for (std::size_t i = 0; i < kCount; ++i) {
        const double p = noise.density(residuals[i]);
        ASSERT_DOUBLE_EQ(weights[i], p / (p + pOut));
        squares += weights[i] * residuals[i].array().square();
        lowest = lowest.min(residuals[i].array());
        highest = highest.max(residuals[i].array());
    }
    // It stopped where one more step changes neither the noise nor the odds.
    const double determinant = (squares / (inliers - 7.0 / 3.0)).prod();
    EXPECT_NEAR(determinant / noise.determinant(), 1.0, 1e-3);
    const double odds = pOut * (highest - lowest).prod();
    EXPECT_NEAR((kCount - inliers + 1.0) / (inliers + 1.0) / odds, 1.0, 1e-3);
}

INSTANTIATE_TEST_SUITE_P(
    Mixtures, NoiseAndOutliers,
    testing::Values(
        Mixture{0.0, {1, 1, 1}, 1.0}, Mixture{0.1, {1, 2, 5}, 100.0},
        Mixture{0.3, {0.2, 0.3, 0.4}, 1e6}, Mixture{0.5, {1, 1, 1}, 1e3},
        Mixture{0.5, {1, 3, 2}, 50.0}, Mixture{0.4, {1, 1, 1}, 6.0}));

TEST(NoiseAndOutliers, PerfectResidualsAreInliers)
{
    for (const double size : {0.0, 1e-300, 1e-9}) {
        for (const std::size_t count : {1U, 2U, 50U}) {
            Residuals residuals(count, Vector3d(size, -size, 0.0));
            std::vector<double> weights(count);
            const auto [noise, pOut] = estimateNoiseAndOutlierProbability(residuals, weights);
            EXPECT_NEAR(noise.determinant(), 1e-6, 1e-15);
            EXPECT_GT(pOut, 0.0);
            for (const double weight : weights) {
                EXPECT_GT(weight, 0.9) << size << " n " << count;
            }
        }
    }
}

TEST(NoiseAndOutliers, HugeResidualsGiveNumbersAndBadOnesAreRefused)
{
    Residuals residuals(5, Vector3d::Constant(1e149));
    residuals[0].setZero();
    std::vector<double> weights(5);
    const auto [noise, pOut] = estimateNoiseAndOutlierProbability(residuals, weights);
    EXPECT_TRUE(noise.variance().allFinite());
    EXPECT_TRUE(pOut > 0.0 && std::isfinite(pOut));
    for (const double bad :
         {1e150, std::numeric_limits<double>::quiet_NaN(),
          -std::numeric_limits<double>::infinity()}) {
        residuals[3][1] = bad;
        EXPECT_THROW(estimateNoiseAndOutlierProbability(residuals, weights), std::invalid_argument);
    }
    weights.pop_back();
    EXPECT_THROW(
        estimateNoiseAndOutlierProbability(Residuals(5, Vector3d::Zero()), weights),
        std::invalid_argument);
}

} // namespace
} // namespace lumo::gaussMixtureModel
