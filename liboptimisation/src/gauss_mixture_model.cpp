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
constexpr double kStartShare = 0.3;
constexpr double kStartQuantile = 0.385320466407568; // of |x| of a unit Gaussian at that share
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

Noise startNoise(const Residuals& residuals)
{
    Eigen::Vector3d sigma;
    std::vector<double> lengths(residuals.size());
    const auto position = static_cast<std::ptrdiff_t>(
        kStartShare * static_cast<double>(residuals.size())); // below the size
    for (Eigen::Index axis = 0; axis < 3; ++axis) {
        std::transform(
            residuals.begin(), residuals.end(), lengths.begin(),
            [axis](const Eigen::Vector3d& residual) { return std::abs(residual[axis]); });
        std::nth_element(lengths.begin(), lengths.begin() + position, lengths.end());
        sigma[axis] = lengths[static_cast<std::size_t>(position)] / kStartQuantile;
    }
    Noise noise;
    noise.setDeterminantBounds(kMinimumDeterminant, kMaximumDeterminant);
    noise.clear();
    noise.add(sigma, 1.0);
    noise.finish();
    return noise;
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
    Noise noise = startNoise(residuals);
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
        noise.clear();
        for (std::size_t i = 0; i < residuals.size(); ++i) {
            noise.add(residuals[i], weights[i]);
        }
        noise.finish();
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
