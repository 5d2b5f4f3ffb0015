// SPDX-License-Identifier: Apache-2.0
#include "init/alignment_geometry.h"

#include <Eigen/SVD>

#include <algorithm>
#include <cmath>
#include <limits>

namespace lumo {
namespace {

constexpr double kLargestRollError = 0.05; // rad
/// Structure smaller than this share of the extent does not count.
constexpr double kSmallestRatio = 1e-6;
/// Nor does what is not clearly larger than the noise, here in squares: of pairs
/// that were chosen because they fit the noises of the two sets are alike, and
/// look like structure.
constexpr double kAboveNoise = 4.0;

using Points = std::vector<Eigen::Vector3d>;

Eigen::Vector3d centroid(const Points& points)
{
    Eigen::Vector3d sum = Eigen::Vector3d::Zero();
    for (const Eigen::Vector3d& point : points) {
        sum += point / static_cast<double>(points.size());
    }
    return sum;
}

/// The length by which the coordinates may be rounded.
double rounding(const Points& points)
{
    double largest = 0.0;
    for (const Eigen::Vector3d& point : points) {
        largest = std::max(largest, point.cwiseAbs().maxCoeff());
    }
    return 4.0 * std::numeric_limits<double>::epsilon() * largest;
}

/// Counts different points up to three.
int countDifferent(const Points& points)
{
    Points different;
    const double tolerance = rounding(points);
    for (const Eigen::Vector3d& point : points) {
        const bool known =
            std::any_of(different.begin(), different.end(), [&](const Eigen::Vector3d& other) {
                return (point - other).cwiseAbs().maxCoeff() <= tolerance;
            });
        if (!known) {
            different.push_back(point);
        }
        if (different.size() == 3) {
            break;
        }
    }
    return static_cast<int>(different.size());
}

PointPairs inliersOf(const PointPairs& pairs, const Alignment& alignment)
{
    PointPairs inliers;
    for (std::size_t i = 0; i < pairs.points1.size(); ++i) {
        if (alignment.weights[i] >= kInlierWeight) {
            inliers.points1.push_back(pairs.points1[i]);
            inliers.points2.push_back(pairs.points2[i]);
        }
    }
    return inliers;
}

/// What the inliers share, and what they do not; squares of the unit of points 1.
struct Structure
{
    Eigen::Vector3d shared; ///< singular values of the covariance, largest first
    double noise = 0.0;     ///< variance of one coordinate
};

Structure structureOf(const PointPairs& inliers, const Alignment& alignment)
{
    const auto n = static_cast<double>(inliers.points1.size());
    const Eigen::Vector3d centre1 = centroid(inliers.points1);
    const Eigen::Vector3d centre2 = alignment.transform.transform(centroid(inliers.points2));
    Eigen::Matrix3d covariance = Eigen::Matrix3d::Zero();
    double squares = 0.0;
    for (std::size_t i = 0; i < inliers.points1.size(); ++i) {
        const Eigen::Vector3d moved = alignment.transform.transform(inliers.points2[i]);
        covariance += (inliers.points1[i] - centre1) * (moved - centre2).transpose() / n;
        squares += (inliers.points1[i] - moved).squaredNorm() / n;
    }
    const double rounded = rounding(inliers.points1);
    return {
        Eigen::JacobiSVD<Eigen::Matrix3d>(covariance).singularValues(),
        squares / 3.0 + rounded * rounded};
}

} // namespace

Degeneracy examinePoints(const PointPairs& pairs)
{
    const int different = std::min(countDifferent(pairs.points1), countDifferent(pairs.points2));
    if (different == 1 && pairs.points1.size() > 1) {
        return Degeneracy::Coincident;
    }
    return different < 3 ? Degeneracy::TooFew : Degeneracy::None;
}

Degeneracy examineInliers(const PointPairs& pairs, const Alignment& alignment)
{
    const PointPairs inliers = inliersOf(pairs, alignment);
    if (inliers.points1.empty()) {
        return Degeneracy::TooFew;
    }
    if (const Degeneracy found = examinePoints(inliers); found != Degeneracy::None) {
        return found;
    }
    const Structure structure = structureOf(inliers, alignment);
    const auto n = static_cast<double>(inliers.points1.size());
    const double smallest = std::max(
        kSmallestRatio * kSmallestRatio * structure.shared[0], kAboveNoise * structure.noise);
    const double across = structure.shared[1];
    if (across <= smallest ||
        structure.noise > kLargestRollError * kLargestRollError * n * across) {
        return Degeneracy::Collinear;
    }
    return structure.shared[2] <= smallest ? Degeneracy::Coplanar : Degeneracy::None;
}

double residualQuantile(
    const std::vector<Eigen::Vector3d>& points1, const std::vector<Eigen::Vector3d>& points2,
    const math::RigidTransform3D& transform, double share)
{
    std::vector<double> squares;
    squares.reserve(points1.size());
    for (std::size_t i = 0; i < points1.size(); ++i) {
        squares.push_back((points1[i] - transform.transform(points2[i])).squaredNorm());
    }
    const auto index = std::min(
        static_cast<std::size_t>(share * static_cast<double>(squares.size())), squares.size() - 1);
    const auto element = squares.begin() + static_cast<std::ptrdiff_t>(index);
    std::nth_element(squares.begin(), element, squares.end());
    return std::sqrt(*element);
}

} // namespace lumo
