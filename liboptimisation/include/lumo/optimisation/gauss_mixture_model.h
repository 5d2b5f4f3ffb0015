// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/mathematics/gauss_noise_diagonal.h"
#include "lumo/optimisation/export.h"

#include <Eigen/Core>

#include <utility>
#include <vector>

namespace lumo::gaussMixtureModel {

/// The noise and the outliers in a list of residuals, by expectation
/// maximisation (Dempster, Laird and Rubin, Journal of the Royal Statistical
/// Society B 39(1), 1977).
///
/// Model: a residual is, with probability a, of a zero-mean Gaussian with
/// diagonal covariance, and else anywhere in a box with equal density u. The
/// box is as wide on each axis as the residuals are, but at least 6 standard
/// deviations of the Gaussian: else residuals without outliers would be split.
/// Where n residuals are inliers by w, a = (w + 1) / (n + 2), so that neither
/// kind is ever excluded.
///
/// The residuals are taken to be those of a fit of seven parameters: with W the
/// sum of the weights, 3 W - 7 of the 3 W numbers are free.
///
/// Start: a = 1/2, and on each axis the standard deviation s for which 70 % of
/// the residuals would be as small as they are, if all were inliers. So high a
/// quantile is not that of the few pairs that a transform was fitted to exactly.
/// With fewer than ten inliers s also counts as two residuals, which keeps
/// the Gaussian from shrinking onto those pairs; ten carry 30 numbers, enough
/// to estimate three variances without it.
///
/// Stop: when in one step the determinant of the covariance and the odds
/// (1 - a) / a both change by less than 1e-3 of themselves, or after 100 steps.
///
/// \param residuals  in any unit, finite and below 1e150; the determinant of
///        the covariance is kept at 1e-6 of that unit to the sixth and more
/// \param[out] weights  the probability that each residual is an inlier. What
///        it held before is not used: it need not belong to these residuals.
/// \returns the Gaussian, and the outlier density u (1 - a) / a (positive): with
///          p the Gaussian's density at a residual, p / (p + outlier density) is
///          the probability that it is an inlier
/// \throws std::invalid_argument if a residual is not finite or not below 1e150,
///         or the lists are of different lengths
[[nodiscard]] LUMO_OPTIMISATION_EXPORT std::pair<GaussNoiseDiagonal<double, 3>, double>
estimateNoiseAndOutlierProbability(
    const std::vector<Eigen::Vector3d>& residuals, std::vector<double>& weights);

} // namespace lumo::gaussMixtureModel
