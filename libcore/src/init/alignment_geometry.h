// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/init/alignment.h"

namespace lumo {

/// What all points tell without a transform: Coincident, TooFew or None.
[[nodiscard]] Degeneracy examinePoints(const PointPairs& pairs);

/// What the inliers of an alignment tell about it: Coincident, TooFew,
/// Collinear, Coplanar or None. Uses its transform, weights and residuals.
///
/// Structure that both sets share shows in the covariance between them: with its
/// singular values D1 >= D2 >= D3 the roll about the long axis is known to about
/// s / sqrt(n D2), s being the noise of one coordinate. It counts as free above
/// 0.05 rad, or if the extent across the line, sqrt(D2), is not above 2 s.
[[nodiscard]] Degeneracy examineInliers(const PointPairs& pairs, const Alignment& alignment);

/// The length that `share` of the residuals under a transform do not exceed.
/// There must be points.
[[nodiscard]] double residualQuantile(
    const std::vector<Eigen::Vector3d>& points1, const std::vector<Eigen::Vector3d>& points2,
    const math::RigidTransform3D& transform, double share);

} // namespace lumo
