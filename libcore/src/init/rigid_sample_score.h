// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "init/rigid_residuals.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// How the random search of a rigid transform makes and scores its candidates.
namespace lumo::rigidSampleScore {

/// Which of the n sorted squared residual lengths is the score, when the share
/// `outlierRatio` of the pairs is assumed to be wrong. n is not 0.
[[nodiscard]] std::size_t quantileIndex(double outlierRatio, std::size_t n);

/// Fits a transform to the pairs `sample` in closed form.
/// \param[out] transform  untouched on failure
/// \returns false if these pairs do not determine a transform
[[nodiscard]] bool fit(
    const rigidResiduals::Columns& pairs, const std::vector<std::uint32_t>& sample,
    math::RigidTransform3D& transform);

/// The residual length at `position` of the sorted ones, in sigmas.
/// \param[out] weights  one number a pair: 1 where the squared length is below twice that
///        of the score, else 0
/// \param scratch  as many numbers as pairs; overwritten
/// \param log  whether the score and the number of inliers are logged
/// \throws std::logic_error "empty container" if there are no pairs
[[nodiscard]] double score(
    const rigidResiduals::Columns& pairs, const math::RigidTransform3D& transform,
    std::size_t position, std::vector<double>& weights, std::vector<double>& scratch, bool log);

/// Whether that score certainly exceeds `best`, found without sorting. May be false where
/// the score exceeds it by no more than rounding.
[[nodiscard]] bool exceeds(
    const rigidResiduals::Columns& pairs, const math::RigidTransform3D& transform,
    std::size_t position, double best);

} // namespace lumo::rigidSampleScore
