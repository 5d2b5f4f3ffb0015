// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"
#include "lumo/core/init/point_pairs.h"
#include "lumo/mathematics/rigid_transform_3d.h"

#include <QString>

#include <cstdint>
#include <vector>

namespace lumo {

/// What about the pairs that fit makes their transform doubtful or arbitrary.
enum class Degeneracy {
    None,
    Coincident, ///< all points of a set are one: rotation and scale are free
    Collinear,  ///< on a line, as far as their noise tells: the roll about it is free
    Coplanar,   ///< in a plane, as far as their noise tells: no harm
    Mirrored,   ///< a reflection would fit clearly better than any rotation
    TooFew,     ///< fewer than three different points in a set: the rotation is free
};

/// Whether the transform is one of many that fit as well.
[[nodiscard]] LUMO_CORE_EXPORT bool isArbitrary(Degeneracy degeneracy);

namespace text {
/// "none", "coincident", "collinear", "coplanar", "mirrored" or "tooFew".
[[nodiscard]] LUMO_CORE_EXPORT QString toString(Degeneracy degeneracy);
} // namespace text

/// How align() searches. The defaults serve unless far more pairs are wrong.
struct AlignmentOptions
{
    double outlierRatio = 0.3; ///< assumed share of wrong pairs, in [0, 1)
    int samplePairs = 3;       ///< pairs per random sample, at least 3
    std::uint32_t seed = 5489; ///< of the random samples
};

/// A pair of this weight or more counts as an inlier.
inline constexpr double kInlierWeight = 0.5;

/// Among so many pairs a wrong one can be found; of fewer all are fitted alike.
inline constexpr std::size_t kFewestPairsForOutliers = 5;

/// The similarity transform that takes points 2 to points 1, and how well.
struct Alignment
{
    math::RigidTransform3D transform; ///< from points 2 to points 1
    std::vector<double> weights;      ///< a pair: how much it counts as an inlier, in [0, 1]
    /// point 1 - transform(point 2), in the unit of points 1.
    std::vector<Eigen::Vector3d> residuals;
    double inlierRatio = 0.0;                 ///< mean weight
    std::size_t inliers = 0;                  ///< pairs of kInlierWeight and more
    double rmsInliers = 0.0;                  ///< root mean square length of their residuals
    Degeneracy degeneracy = Degeneracy::None; ///< of the inliers
};

/// Aligns two point sets with OptimiseRigidTransform3D, and looks at what the
/// result rests on. For the same input and options the result is the same.
///
/// Where the pairs have no standard deviations, one for all is estimated from
/// the residuals of a first search, so that the unit of the coordinates does not
/// matter.
///
/// A stop that is asked of the progress service ends it soon.
///
/// Fewer than three different points in a set give no more than a translation
/// and, for two, the direction between them.
///
/// \param[out] alignment  replaced on success, untouched on failure
/// \param[out] error  on failure the reason (no pairs; numbers out of range; no
///     finite transform; "stopped"), else untouched
/// \throws std::invalid_argument if an option is out of its range
[[nodiscard]] LUMO_CORE_EXPORT bool align(
    const PointPairs& pairs, const AlignmentOptions& options, Alignment& alignment, QString& error);

} // namespace lumo
