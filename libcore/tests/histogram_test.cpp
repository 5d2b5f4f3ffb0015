// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/init/error_estimator_threshold_base.h"
#include "lumo/core/init/histogram.h"
#include "test_seed.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <sstream>
#include <stdexcept>

namespace lumo {
namespace {

using Pair = std::pair<std::size_t, std::size_t>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// Shows which bin a number is counted in.
class OpenHistogram : public Histogram
{
public:
    using Histogram::_addDatum;
    using Histogram::Histogram;
};

TEST(Histogram, EachNumberCountsInTheBinThatHoldsIt)
{
    std::mt19937 rng(testSeed());
    std::uniform_real_distribution<double> uniform(-2.0, 6.0);
    OpenHistogram histogram(5.0, 1.0, 40); // the ends in the wrong order
    EXPECT_EQ(histogram.min(), 1.0);
    EXPECT_EQ(histogram.max(), 5.0);
    for (std::size_t i = 0; i < 10000; ++i) {
        const double value = uniform(rng);
        const std::size_t bin = histogram._addDatum(value);
        const auto [lower, upper] = histogram.bounds(bin);
        ASSERT_TRUE(value >= lower - 1e-14 || bin == 0) << value;
        ASSERT_TRUE(value < upper + 1e-14 || bin == 39) << value;
        ASSERT_EQ(histogram.count(), i + 1);
    }
}

TEST(Histogram, NumbersBeyondTheRangeOrNoneAtAll)
{
    struct Case
    {
        double value;
        std::size_t bin;
    };
    constexpr std::size_t kIgnored = std::numeric_limits<std::size_t>::max();
    OpenHistogram histogram(1.0, 5.0, 4);
    for (const Case& c :
         {Case{-9999.999, 0},
          {-9999.9990001, kIgnored},
          {-kInfinity, kIgnored},
          {kNaN, kIgnored},
          {0.99, 0},
          {1.0, 0},
          {4.99, 3},
          {5.0, 3},
          {1e300, 3},
          {kInfinity, 3}}) {
        EXPECT_EQ(histogram._addDatum(c.value), c.bin) << c.value;
    }
    EXPECT_EQ(histogram.count(), 7u);
    OpenHistogram point(2.0, 2.0, 10);
    EXPECT_EQ(point._addDatum(std::nextafter(2.0, 3.0)), 9u);
    EXPECT_EQ(point._addDatum(std::nextafter(2.0, 1.0)), 0u);
    EXPECT_THROW(OpenHistogram().addDatum(1.0), std::logic_error);
    EXPECT_THROW(histogram.reset(0.0, kNaN, 3), std::invalid_argument);
    EXPECT_THROW(histogram.reset(-1e308, 1e308, 3), std::invalid_argument);
    EXPECT_THROW(histogram.reset(1e307, 1.1e307, 100), std::invalid_argument);
    EXPECT_EQ(histogram.size(), 4u);
}

/// Bins of width 1 from 0 with these counts.
Histogram withCounts(const std::vector<std::size_t>& counts)
{
    Histogram histogram(0.0, static_cast<double>(counts.size()), counts.size());
    for (std::size_t bin = 0; bin < counts.size(); ++bin) {
        for (std::size_t i = 0; i < counts[bin]; ++i) {
            histogram.addDatum(static_cast<double>(bin) + 0.5);
        }
    }
    return histogram;
}

TEST(Histogram, Queries)
{
    Histogram histogram = withCounts({1, 4, 0, 4, 1});
    EXPECT_EQ(histogram.count(1, 3), 4u);
    EXPECT_EQ(histogram.count(3, 1), 0u);
    EXPECT_EQ(histogram.count(3, 99), 5u);
    EXPECT_EQ(histogram.binMax(), 4u);
    EXPECT_EQ(histogram.binMaxIndex(), 1u);
    EXPECT_EQ(histogram.range(3.2, 0.5), Pair(1, 4));
    EXPECT_EQ(histogram.range(-5.0, -4.0), Pair(0, 1));
    EXPECT_EQ(histogram.range(7.0, 8.0), Pair(5, 5));
    EXPECT_TRUE(histogram.addHisto(Histogram(7.0, 9.0, 5)));
    EXPECT_TRUE(histogram.addHisto(Histogram(histogram)));
    EXPECT_EQ(histogram.count(), 20u);
    EXPECT_FALSE(histogram.addHisto(Histogram(0.0, 5.0, 6)));
    histogram.clear();
    EXPECT_EQ(histogram.count(), 0u);
    EXPECT_EQ(histogram.max(), 5.0);
    const Histogram none;
    EXPECT_FALSE(none.valid());
    EXPECT_FALSE(Histogram(0.0, 1.0, 1).valid());
    EXPECT_EQ(none.binMax() + none.binMaxIndex() + none.count(), 0u);
    EXPECT_EQ(none.range(0.0, 1.0), Pair(0, 0));
}

TEST(Histogram, CutoffLeavesTheTailsOut)
{
    const Histogram histogram = withCounts({1, 4, 0, 4, 1});
    EXPECT_EQ(histogram.cutoff(0.0), Pair(0, 5));
    EXPECT_EQ(histogram.cutoff(0.1), Pair(1, 4));
    EXPECT_EQ(histogram.cutoff(0.2), Pair(2, 3));
    EXPECT_EQ(histogram.cutoff(0.6), Pair(4, 1));
    EXPECT_EQ(histogram.cutoff(1.0), Pair(5, 1)); // never bin 0 at the upper end
    EXPECT_EQ(histogram.cutoff(7.0), Pair(5, 1));
    EXPECT_EQ(histogram.cutoff(kNaN), Pair(0, 5));
    EXPECT_EQ(Histogram().cutoff(0.5), Pair(0, 0));
}

/// An estimator that is told its result.
class Told : public ErrorEstimatorThresholdBase
{
public:
    Told(std::size_t inliers, double error)
        : ErrorEstimatorThresholdBase(9.0)
    {
        setThreshold(2.0);
        m_inlierIndices.resize(inliers, 4);
        m_meanSquareError = error;
        m_sampleSize = 20;
    }
};

TEST(ErrorEstimatorThresholdBase, MoreInliersAreBetterThenSmallerErrors)
{
    EXPECT_TRUE(Told(10, 5.0).isBetterThan(Told(9, 1.0)));
    EXPECT_FALSE(Told(9, 1.0).isBetterThan(Told(10, 5.0)));
    EXPECT_TRUE(Told(10, 1.0).isBetterThan(Told(10, 5.0)));
    EXPECT_FALSE(Told(10, 5.0).isBetterThan(Told(10, 5.0)));
}

TEST(ErrorEstimatorThresholdBase, ResetKeepsTheThresholdOnly)
{
    Told estimator(10, 5.0);
    estimator.scaleThreshold(1.5);
    const ErrorEstimatorThresholdBase copy = estimator;
    estimator.reset();
    EXPECT_EQ(estimator.threshold(), 3.0);
    EXPECT_EQ(estimator.numInlier() + estimator.sampleSize(), 0u);
    EXPECT_EQ(estimator.meanSquareError(), 0.0);
    EXPECT_EQ(copy.inlierFraction(), 0.5);
    EXPECT_EQ(copy.inlierIndices(), std::vector<std::size_t>(10, 4));
    std::ostringstream stream;
    stream << copy << '|' << ErrorEstimatorThresholdBase();
    EXPECT_EQ(stream.str(), "10 inlier, MSE 5|0 inlier, MSE -1");
}

} // namespace
} // namespace lumo
