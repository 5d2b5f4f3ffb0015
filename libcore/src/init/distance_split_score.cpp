// SPDX-License-Identifier: Apache-2.0
// OptimiseRigidTransform3D: where residual lengths split into noise and outliers.
#include "init/rigid_residuals.h"
#include "lumo/core/init/histogram.h"
#include "lumo/core/init/lumo_optimize_rigid_transform_3d.h"
#include "lumo/foundation/log.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace lumo {

namespace {

constexpr double kNoScore = 1e256;
constexpr std::size_t kMostBins = 1000;

/// One way to split n lengths: the smaller are noise, the others are outliers.
struct Split
{
    double variance = 0.0;
    double outlierDensity = 0.0;
    double score = 0.0; ///< minus the logarithm of the likelihood; NaN for lengths of 0 only
};

/// \param sumOfSquares  of the `inliers` smallest lengths
Split splitAfter(
    double inliers, double sumOfSquares, double n, double longest, double smallestSigma)
{
    Split split;
    split.variance = std::max(sumOfSquares / inliers, smallestSigma * smallestSigma);
    const double outliers = n - inliers;
    split.outlierDensity = outliers / n / longest;
    // The sum over the inliers of log(exp(-r^2 / (2 v)) * 2 / sqrt(2 pi v)).
    const double noise =
        inliers * std::log(2.0 / std::sqrt(2.0 * std::numbers::pi * split.variance)) -
        0.5 * sumOfSquares / split.variance;
    split.score = -outliers * std::log(split.outlierDensity) - noise;
    return split;
}

/// |p1 - transform(p2)|, not divided by sigmas.
std::vector<double> residualLengths(
    const rigidResiduals::Columns& pairs, const math::RigidTransform3D& transform)
{
    std::vector<double> lengths(pairs.size);
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        const Eigen::Vector3d moved = transform.transform(rigidResiduals::listed(pairs, 1, i));
        lengths[i] = (rigidResiduals::listed(pairs, 0, i) - moved).norm();
    }
    return lengths;
}

} // namespace

double OptimiseRigidTransform3D::computeScore(double smallestSigma, double& outlierThreshold) const
{
    std::vector<double> lengths =
        residualLengths({m_columns.data(), m_weights.size()}, m_transform);
    std::sort(lengths.begin(), lengths.end());
    const double n = static_cast<double>(lengths.size());
    double best = kNoScore;
    double bestDensity = 0.0;
    double sumOfSquares = 0.0;
    for (std::size_t j = 0; j + 1 < lengths.size(); ++j) {
        sumOfSquares += lengths[j] * lengths[j];
        const Split split =
            splitAfter(static_cast<double>(j + 1), sumOfSquares, n, lengths.back(), smallestSigma);
        if (split.score <= best) {
            best = split.score;
            bestDensity = split.outlierDensity;
            outlierThreshold = lengths[j];
        }
        log::debug() << " hist: " << lengths[j] << " i: " << j
                     << " std: " << std::sqrt(split.variance) << " pout: " << split.outlierDensity
                     << " sim: " << split.score << " bestSim" << best
                     << " outThe/best: " << outlierThreshold;
    }
    log::debug() << "bestSim: " << best << " bestPout: " << bestDensity;
    return best;
}

double OptimiseRigidTransform3D::computeScoreHist(
    double smallestSigma, double& outlierThreshold) const
{
    const std::vector<double> lengths =
        residualLengths({m_columns.data(), m_weights.size()}, m_transform);
    if (lengths.size() < 2) {
        return kNoScore;
    }
    const double longest = *std::max_element(lengths.begin(), lengths.end());
    Histogram histogram(0.0, longest, std::min(lengths.size(), kMostBins));
    for (const double length : lengths) {
        histogram.addDatum(length);
    }
    double best = kNoScore;
    double bestThreshold = outlierThreshold;
    double sumOfSquares = 0.0;
    double inliers = 0.0;
    for (std::size_t bin = 0; bin + 1 < histogram.size(); ++bin) {
        if (histogram[bin] == 0) {
            continue; // the same split as before it
        }
        const auto [lower, upper] = histogram.bounds(bin);
        const double centre = 0.5 * (lower + upper);
        const double count = static_cast<double>(histogram[bin]);
        inliers += count;
        sumOfSquares += count * centre * centre;
        const Split split = splitAfter(
            inliers, sumOfSquares, static_cast<double>(lengths.size()), longest, smallestSigma);
        if (split.score <= best) {
            best = split.score;
            bestThreshold = upper;
        }
        log::debug() << " hist: " << histogram[bin] << " i: " << bin << " sim: " << split.score
                     << " outlierThe:" << upper << " bestOutlierThe:" << bestThreshold;
    }
    outlierThreshold = bestThreshold;
    return best;
}

} // namespace lumo
