// SPDX-License-Identifier: Apache-2.0
#include "lumo/optimisation/gauss_mixture_model.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <stdexcept>

namespace lumo::gaussMixtureModel {

namespace {

using Residuals = std::vector<Eigen::Vector3d>;
using Noise = GaussNoiseDiagonal<double, 3>;

constexpr double kLargestResidual = 1e150; // its square is finite
constexpr double kMinimumDeterminant = 1e-6;
constexpr double kMaximumDeterminant = 1e256;
constexpr double kStartShare = 0.7;
constexpr double kStartQuantile = 1.036433389493790; // of |x| of a unit Gaussian at that share
constexpr double kPriorResiduals = 2.0;
constexpr double kEnoughInliers = 10.0;
constexpr double kParametersPerAxis = 7.0 / 3.0; // of a similarity transform
constexpr double kSmallestFreedom = 0.5;         // of an axis, where fewer than three pairs fit
constexpr double kBoxSigmas = 6.0;
constexpr double kTolerance = 1e-3;
constexpr int kMaxSteps = 100;

void check(const Residuals& residuals, const std::vector<double>& weights)
{
    if (residuals.size() != weights.size()) {
        throw std::invalid_argument("gaussMixtureModel: residuals and weights differ in number");
    }
    const bool usable = std::all_of(residuals.begin(), residuals.end(), [](const auto& residual) {
        return (residual.array().abs() < kLargestResidual).all(); // false for NaN
    });
    if (!usable) {
        throw std::invalid_argument("gaussMixtureModel: a residual is not finite or too large");
    }
}

Noise noiseOf(const Eigen::Vector3d& variance)
{
    Noise noise;
    noise.setDeterminantBounds(kMinimumDeterminant, kMaximumDeterminant);
    noise.clear();
    noise.add(variance.cwiseSqrt(), 1.0);
    noise.finish();
    return noise;
}

/// On each axis the variance of which `kStartShare` of the residuals would be the quantile.
Eigen::Vector3d startVariance(const Residuals& residuals)
{
    Eigen::Vector3d variance;
    std::vector<double> lengths(residuals.size());
    const auto position = static_cast<std::ptrdiff_t>(
        kStartShare * static_cast<double>(residuals.size())); // below the size
    for (Eigen::Index axis = 0; axis < 3; ++axis) {
        std::transform(
            residuals.begin(), residuals.end(), lengths.begin(),
            [axis](const Eigen::Vector3d& residual) { return std::abs(residual[axis]); });
        std::nth_element(lengths.begin(), lengths.begin() + position, lengths.end());
        const double sigma = lengths[static_cast<std::size_t>(position)] / kStartQuantile;
        variance[axis] = sigma * sigma;
    }
    return variance;
}

/// \param w  the sum of the weights
Noise noiseOf(
    const Residuals& residuals, const std::vector<double>& weights, double w,
    const Eigen::Vector3d& start)
{
    const double prior = w < kEnoughInliers ? kPriorResiduals : 0.0;
    Eigen::Vector3d sum = prior * start;
    for (std::size_t i = 0; i < residuals.size(); ++i) {
        sum += weights[i] * residuals[i].cwiseAbs2();
    }
    return noiseOf(sum / std::max(w + prior - kParametersPerAxis, kSmallestFreedom));
}

Eigen::Vector3d widthOf(const Residuals& residuals)
{
    Eigen::Vector3d lowest = residuals.front();
    Eigen::Vector3d highest = residuals.front();
    for (const Eigen::Vector3d& residual : residuals) {
        lowest = lowest.cwiseMin(residual);
        highest = highest.cwiseMax(residual);
    }
    return highest - lowest;
}

/// u (1 - a) / a, never 0, so that it divides.
double outlierDensity(const Noise& noise, const Eigen::Vector3d& width, double odds)
{
    const Eigen::Vector3d box = width.cwiseMax(kBoxSigmas * noise.variance().cwiseSqrt());
    return std::max(odds / box.prod(), std::numeric_limits<double>::min());
}

/// \returns the sum of the weights
double updateWeights(
    const Residuals& residuals, const Noise& noise, double pOut, std::vector<double>& weights)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < residuals.size(); ++i) {
        const double p = noise.density(residuals[i]);
        weights[i] = p / (p + pOut);
        sum += weights[i];
    }
    return sum;
}

bool hasSettled(double before, double now)
{
    return std::abs(now - before) <= kTolerance * std::abs(now);
}

} // namespace

std::pair<Noise, double> estimateNoiseAndOutlierProbability(
    const Residuals& residuals, std::vector<double>& weights)
{
    check(residuals, weights);
    if (residuals.empty()) {
        Noise noise;
        noise.setDeterminantBounds(kMinimumDeterminant, kMaximumDeterminant);
        return {noise, std::numeric_limits<double>::min()};
    }
    const Eigen::Vector3d start = startVariance(residuals);
    Noise noise = noiseOf(start);
    const Eigen::Vector3d width = widthOf(residuals);
    const double n = static_cast<double>(residuals.size());
    double odds = 1.0;
    for (int step = 0; step < kMaxSteps; ++step) {
        const double w =
            updateWeights(residuals, noise, outlierDensity(noise, width, odds), weights);
        if (w <= std::numeric_limits<double>::epsilon()) {
            break; // nothing is an inlier: no noise can be found from it
        }
        const double before = noise.determinant();
        noise = noiseOf(residuals, weights, w, start);
        const double oddsBefore = odds;
        odds = (n - w + 1.0) / (w + 1.0);
        if (hasSettled(before, noise.determinant()) && hasSettled(oddsBefore, odds)) {
            break;
        }
    }
    const double pOut = outlierDensity(noise, width, odds);
    updateWeights(residuals, noise, pOut, weights);
    return {noise, pOut};
}

} // namespace lumo::gaussMixtureModel
