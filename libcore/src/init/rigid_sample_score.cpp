// SPDX-License-Identifier: Apache-2.0
#include "init/rigid_sample_score.h"

#include "lumo/foundation/log.h"
#include "lumo/mathematics/transform_optimisation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace lumo::rigidSampleScore {

using rigidResiduals::Columns;

std::size_t quantileIndex(double outlierRatio, std::size_t n)
{
    const double position = (1.0 - outlierRatio) * static_cast<double>(n);
    return std::min(static_cast<std::size_t>(position), n - 1);
}

bool fit(
    const Columns& pairs, const std::vector<std::uint32_t>& sample,
    math::RigidTransform3D& transform)
{
    std::array<std::vector<Eigen::Vector3d>, 3> lists; // points 1, points 2, sigmas
    for (std::size_t list = 0; list < lists.size(); ++list) {
        for (const std::uint32_t i : sample) {
            lists[list].push_back(rigidResiduals::listed(pairs, list, i));
        }
    }
    return math::transformOptimisation::estimateTransform(lists[0], lists[1], lists[2], transform);
}

double score(
    const Columns& pairs, const math::RigidTransform3D& transform, std::size_t position,
    std::vector<double>& weights, std::vector<double>& scratch, bool log)
{
    const std::size_t n = pairs.size;
    if (n == 0) {
        throw std::logic_error("empty container");
    }
    rigidResiduals::squaredLengths(pairs, transform, 0, n, weights.data());
    std::copy(weights.begin(), weights.end(), scratch.begin());
    const auto element = scratch.begin() + static_cast<std::ptrdiff_t>(position);
    std::nth_element(scratch.begin(), element, scratch.end());
    const double quantile = *element;
    std::size_t inliers = 0;
    for (double& weight : weights) {
        const bool inlier = weight < 2.0 * quantile;
        weight = inlier ? 1.0 : 0.0;
        inliers += inlier ? 1U : 0U;
    }
    const double result = std::sqrt(quantile);
    if (log) {
        log::debug() << "computeOutliers median " << result << " pos " << position << "/" << n;
        log::debug() << "nr Inliers " << inliers << " "
                     << 100.0 * static_cast<double>(inliers) / static_cast<double>(n) << "%";
    }
    return result;
}

bool exceeds(
    const Columns& pairs, const math::RigidTransform3D& transform, std::size_t position,
    double best)
{
    // The quantile of squares is above a bound when more of them are than may
    // follow it. The bound is so far above best^2 that its root, rounded, is
    // above best.
    const double bound = best * best * (1.0 + 4.0 * std::numeric_limits<double>::epsilon()) +
                         std::numeric_limits<double>::min();
    const std::size_t mayFollow = pairs.size - 1 - position;
    constexpr std::size_t kBlock = 128; // stays in the fastest cache, and gives up early
    std::array<double, kBlock> d;
    std::size_t above = 0;
    for (std::size_t first = 0; first < pairs.size; first += kBlock) {
        const std::size_t last = std::min(first + kBlock, pairs.size);
        rigidResiduals::squaredLengths(pairs, transform, first, last, d.data());
        for (std::size_t i = 0; i < last - first; ++i) {
            above += d[i] > bound ? 1U : 0U;
        }
        if (above > mayFollow) {
            return true;
        }
    }
    return false;
}

} // namespace lumo::rigidSampleScore
