// SPDX-License-Identifier: Apache-2.0
#include "lumo/foundation/log.h"
#include "lumo/mathematics/gauss_noise.h"
#include "lumo/mathematics/gauss_noise_diagonal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <stdexcept>

namespace lumo {
namespace {

using Eigen::Vector3d;
using Noise = GaussNoiseDiagonal<double, 3>;

TEST(GaussNoise, VarianceIsTheWeightedMeanSquareWithinItsBounds)
{
    struct Case
    {
        double value, weight, minimum, maximum, variance;
        bool within;
    };
    const double infinity = std::numeric_limits<double>::infinity();
    for (const Case& c :
         {Case{2.0, 3.0, 0.01, 1e20, 4.0, true}, Case{0.01, 1.0, 0.01, 1e20, 0.01, false},
          Case{2.0, 1.0, 1e-6, 0.001, 0.001, false}, Case{2.0, 0.0, 0.01, 7.0, 7.0, false},
          Case{infinity, 1.0, 0.01, 7.0, 7.0, false}}) {
        GaussNoise noise;
        noise.setBounds(c.minimum, c.maximum);
        noise.add(100.0, 1.0);
        noise.clear();
        noise.add(c.value, c.weight);
        noise.add(-c.value, c.weight);
        EXPECT_EQ(noise.finish(), c.within) << c.value;
        EXPECT_DOUBLE_EQ(noise.variance(), c.variance) << c.value;
    }
    EXPECT_THROW(GaussNoise().setBounds(2.0, 1.0), std::invalid_argument);
}

TEST(GaussNoise, DensitySumsToOne)
{
    GaussNoise noise;
    noise.add(1.5, 1.0);
    noise.finish();
    double sum = 0.0;
    for (double x = -15.0; x < 15.0; x += 0.01) {
        sum += 0.01 * noise.density(x);
    }
    EXPECT_NEAR(sum, 1.0, 1e-9);
    const log::Capture logged;
    noise.print();
    EXPECT_EQ(logged.records().at(0).text, "GaussNoise covariance: 2.25 determinant: 2.25");
}

struct DiagonalCase
{
    Vector3d value;
    double weight;
    Vector3d variance;
    bool within;
};

class GaussNoiseDiagonalBounds : public testing::TestWithParam<DiagonalCase>
{};

TEST_P(GaussNoiseDiagonalBounds, HoldTheDeterminant)
{
    const auto& [value, weight, variance, within] = GetParam();
    Noise noise;
    noise.setDeterminantBounds(1e-6, 1e256);
    noise.clear();
    noise.add(value, weight);
    noise.add(-value, weight);
    EXPECT_EQ(noise.finish(), within);
    for (Eigen::Index k = 0; k < 3; ++k) {
        EXPECT_NEAR(noise.variance()[k] / variance[k], 1.0, 1e-12) << k;
        EXPECT_DOUBLE_EQ(noise.inverseVariance()[k] * noise.variance()[k], 1.0) << k;
    }
    const double bound = variance.prod() < 1.0 ? 1e-6 : 1e256;
    EXPECT_EQ(noise.determinant() == bound, !within); // to the last bit
    const double peak = 1.0 / std::sqrt(std::pow(2.0 * std::numbers::pi, 3.0) * variance.prod());
    EXPECT_NEAR(noise.density(Vector3d::Zero()) / peak, 1.0, 1e-12);
    const Vector3d sigma = variance.cwiseSqrt();
    EXPECT_NEAR(noise.density(sigma) / peak, std::exp(-1.5), 1e-12);
}

const double kLargestRoot = std::cbrt(1e256);

INSTANTIATE_TEST_SUITE_P(
    Samples, GaussNoiseDiagonalBounds,
    testing::Values(
        DiagonalCase{{1, 2, 3}, 0.5, {1, 4, 9}, true},
        // 1e-8 is raised to 1e-6: the shape stays.
        DiagonalCase{{1e-1, 1e-1, 1e-2}, 0.5, Vector3d(1e-2, 1e-2, 1e-4) * std::cbrt(100.0), false},
        // 1e-12 and 0 are too small for a shape.
        DiagonalCase{{1e-1, 1e-2, 1e-3}, 0.5, Vector3d::Constant(1e-2), false},
        DiagonalCase{{1, 1, 0}, 0.5, Vector3d::Constant(1e-2), false},
        DiagonalCase{{1e60, 1e60, 1e60}, 0.5, Vector3d::Constant(kLargestRoot), false},
        DiagonalCase{{1, 2, 3}, 0.0, Vector3d::Constant(kLargestRoot), false}));

TEST(GaussNoiseDiagonal, NoWeightIsAnErrorInTheLog)
{
    const log::Capture logged;
    Noise noise;
    noise.clear();
    noise.finish();
    ASSERT_EQ(logged.records().size(), 1u);
    const log::Record record = logged.records().front();
    EXPECT_EQ(record.text, "GaussNoise: non-positive weightSum 0");
    EXPECT_EQ(record.level, log::Level::Important);
    EXPECT_EQ(record.source, "GaussNoiseDiagonal");
}

TEST(GaussNoiseDiagonal, PrintShowsVariancesAndTheirProduct)
{
    const log::Capture logged;
    Noise noise;
    noise.clear();
    noise.add({1, 2, 3}, 1.0);
    noise.finish();
    noise.print();
    EXPECT_EQ(logged.records().at(0).text, "GaussNoiseDiagonal covariance: 1 4 9 determinant: 36");
    noise.setDeterminantBounds(2.0, 3.0);
    const double infinity = std::numeric_limits<double>::infinity();
    for (const auto& [minimum, maximum] : {std::pair(0.0, 1.0), {2.0, 1.0}, {1.0, infinity}}) {
        EXPECT_THROW(noise.setDeterminantBounds(minimum, maximum), std::invalid_argument);
    }
    EXPECT_EQ(noise.minimumDeterminant(), 2.0);
    EXPECT_EQ(noise.maximumDeterminant(), 3.0);
}

} // namespace
} // namespace lumo
