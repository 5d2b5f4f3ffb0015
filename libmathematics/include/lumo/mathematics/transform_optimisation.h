// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/mathematics/export.h"
#include "lumo/mathematics/rigid_transform_3d.h"

#include <Eigen/Core>

#include <vector>

namespace lumo::math::transformOptimisation {

/// Computes the similarity transform that maps points2 to points1 with the smallest
/// weighted sum of squared distances, in closed form by a singular value
/// decomposition (S. Umeyama, IEEE Transactions on Pattern Analysis and Machine
/// Intelligence 13(4), 1991, equations 39 to 42, with weights). Reflections are
/// excluded: for mirrored points the result is the best proper rotation.
///
/// A closed form needs a single weight for each point: the inverse of the mean variance,
/// 3 / (sx^2 + sy^2 + sz^2). The result is optimal if the standard deviations of each
/// point are equal on the three axes.
///
/// Coordinates may have any magnitude and offset, as long as the squares of their
/// distances from the centroid are representable.
///
/// \param points1, points2, sigmas  of the same length; points1[i] corresponds to
///        points2[i], and sigmas[i] are the standard deviations of points1[i] on its
///        three axes (positive, in the unit of points1)
/// \param[out] transform  untouched on failure
/// \returns false if there are fewer than 3 points or lists of different
///          lengths, if a number is not finite or a standard deviation not
///          positive, or if the points of one set do not determine a rotation:
///          all within 1e-6 of their extent from one line, or within the
///          rounding of their coordinates from one line or point
[[nodiscard]] LUMO_MATHEMATICS_EXPORT bool estimateTransform(
    const std::vector<Eigen::Vector3d>& points1, const std::vector<Eigen::Vector3d>& points2,
    const std::vector<Eigen::Vector3d>& sigmas, RigidTransform3D& transform);

} // namespace lumo::math::transformOptimisation
