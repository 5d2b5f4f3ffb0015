// SPDX-License-Identifier: Apache-2.0
#include "lumo/mathematics/transform_optimisation.h"

#include <Eigen/Geometry>
#include <Eigen/LU>
#include <Eigen/SVD>

#include <algorithm>
#include <cmath>
#include <limits>

namespace lumo::math::transformOptimisation {

namespace {

using Points = std::vector<Eigen::Vector3d>;

// The decomposition sees squares: at 1e-6 the rotation about the line is
// still known to 1e-4, at 1e-8 it would be rounding noise.
constexpr double kLineTolerance = 1e-6;
// The same for the squares themselves.
constexpr double kRankTolerance = 1e-13;
// Coordinates carry half an epsilon each, a centroid and a difference some more.
constexpr double kRounding = 16.0 * std::numeric_limits<double>::epsilon();

/// Weights relative to the largest, so that no square overflows; false if a sigma is not a
/// standard deviation.
bool weightsOf(const Points& sigmas, std::vector<double>& weights)
{
    weights.clear();
    double smallest = std::numeric_limits<double>::infinity();
    for (const Eigen::Vector3d& sigma : sigmas) {
        if (!sigma.allFinite() || !(sigma.minCoeff() > 0.0)) {
            return false;
        }
        weights.push_back(sigma.stableNorm());
        smallest = std::min(smallest, weights.back());
    }
    for (double& weight : weights) {
        const double ratio = smallest / weight;
        weight = ratio * ratio;
    }
    return std::isfinite(smallest);
}

/// Points relative to their weighted centroid, in units of their extent.
struct Centred
{
    Eigen::Vector3d centroid;
    double extent = 0.0; ///< largest distance from the centroid
    Points points;
};

/// Whether all points are closer to a line through the centroid than is
/// significant. `tolerance` and the points are in units of the extent.
bool onALine(const Points& points, double tolerance)
{
    const auto farthest = std::max_element(
        points.begin(), points.end(), [](const Eigen::Vector3d& a, const Eigen::Vector3d& b) {
            return a.squaredNorm() < b.squaredNorm();
        });
    const Eigen::Vector3d axis = farthest->normalized();
    return std::all_of(points.begin(), points.end(), [&](const Eigen::Vector3d& point) {
        return axis.cross(point).norm() <= tolerance;
    });
}

/// Moves the points to their weighted centroid and scales them by their extent, so that
/// one tolerance suits all units. False if the points do not determine a rotation.
bool centre(const Points& points, const std::vector<double>& weights, Centred& result)
{
    double weightSum = 0.0;
    double magnitude = 0.0;
    Eigen::Vector3d offset = Eigen::Vector3d::Zero();
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (!points[i].allFinite()) {
            return false;
        }
        weightSum += weights[i];
        magnitude = std::max(magnitude, points[i].cwiseAbs().maxCoeff());
        // Relative to the first point: large coordinates would lose digits in a plain sum.
        offset += weights[i] * (points[i] - points.front());
    }
    result.centroid = points.front() + offset / weightSum;
    for (const Eigen::Vector3d& point : points) {
        result.points.emplace_back(point - result.centroid);
        result.extent = std::max(result.extent, result.points.back().stableNorm());
    }
    const double rounding = kRounding * magnitude;
    if (!std::isfinite(result.extent) || result.extent <= rounding) {
        return false;
    }
    for (Eigen::Vector3d& point : result.points) {
        point /= result.extent;
    }
    return !onALine(result.points, std::max(kLineTolerance, rounding / result.extent));
}

/// Rotation and ratio of scales between point sets in units of their extents.
bool fit(
    const Centred& set1, const Centred& set2, const std::vector<double>& weights,
    Eigen::Matrix3d& rotation, double& scale)
{
    Eigen::Matrix3d covariance = Eigen::Matrix3d::Zero();
    double variance2 = 0.0;
    for (std::size_t i = 0; i < weights.size(); ++i) {
        covariance += weights[i] * set1.points[i] * set2.points[i].transpose();
        variance2 += weights[i] * set2.points[i].squaredNorm();
    }
    const Eigen::JacobiSVD<Eigen::Matrix3d> svd(
        covariance, Eigen::ComputeFullU | Eigen::ComputeFullV);
    const Eigen::Vector3d& singular = svd.singularValues();
    if (!(singular[1] > kRankTolerance * variance2)) {
        return false;
    }
    // A negative determinant means a reflection; turning the weakest axis costs least.
    Eigen::Vector3d signs = Eigen::Vector3d::Ones();
    signs[2] = svd.matrixU().determinant() * svd.matrixV().determinant() < 0.0 ? -1.0 : 1.0;
    rotation = svd.matrixU() * signs.asDiagonal() * svd.matrixV().transpose();
    scale = singular.dot(signs) / variance2;
    return scale > 0.0;
}

} // namespace

bool estimateTransform(
    const Points& points1, const Points& points2, const Points& sigmas, RigidTransform3D& transform)
{
    const std::size_t n = points1.size();
    std::vector<double> weights;
    Centred set1;
    Centred set2;
    if (n < 3 || points2.size() != n || sigmas.size() != n || !weightsOf(sigmas, weights) ||
        !centre(points1, weights, set1) || !centre(points2, weights, set2)) {
        return false;
    }
    Eigen::Matrix3d matrix;
    double ratio = 0.0;
    if (!fit(set1, set2, weights, matrix, ratio)) {
        return false;
    }
    RotationMatrix rotation;
    rotation.set(matrix);
    const double scale = ratio * (set1.extent / set2.extent);
    const RigidTransform3D result(
        rotation, set1.centroid - scale * (rotation * set2.centroid), scale);
    if (!result.isFinite() || scale <= 0.0) {
        return false;
    }
    transform = result;
    return true;
}

} // namespace lumo::math::transformOptimisation
