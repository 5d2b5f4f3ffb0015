// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"
#include "lumo/mathematics/rigid_transform_3d.h"

#include <Eigen/Core>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace lumo {

struct PointPairs;

/// Estimating the transform between two sets of points when neither the noise of the
/// right pairs nor the share of wrong ones is known:
///
///     similarity::Estimate found;
///     const similarity::Outcome outcome = similarity::estimate(pairs, {}, found);
///     if (outcome.failure == similarity::Failure::None) {
///         use(found.transform, found.uncertainty.predict(point));
///     }
///
/// Lengths are in the unit of points 1, angles in radians. Functions may run in parallel.
namespace similarity {

/// Which parameters are estimated; the others are fixed.
enum class Freedom {
    Similarity,  ///< scale, rotation, translation: 7 parameters, 3 pairs at least
    FixedScale,  ///< rotation and translation at a given scale: 6, 3 pairs at least
    Vertical,    ///< scale, rotation about the z axis, translation: 5, 2 pairs at least
    Translation, ///< translation at a given scale, without rotation: 3, 1 pair at least
};

/// The number of parameters that are estimated.
[[nodiscard]] LUMO_CORE_EXPORT int parameterCount(Freedom freedom);
/// The fewest pairs that determine the parameters.
[[nodiscard]] LUMO_CORE_EXPORT std::size_t fewestPairs(Freedom freedom);

/// What is estimated, and how.
struct Options
{
    Freedom freedom = Freedom::Similarity;
    /// Unit 1 per unit 2, positive; used by FixedScale and Translation.
    double fixedScale = 1.0;
    std::uint32_t seed = 5489; ///< of the random samples; a seed gives one result
    /// Pairs that are kept out of the fit, one entry a pair, or empty for none.
    std::vector<bool> isCheck;
    /// Asked now and then: true ends the estimate. May be empty.
    std::function<bool()> shouldStop;
};

/// Why there is no estimate.
enum class Failure {
    None,
    BadInput,          ///< lists that do not fit together, numbers that are none or too large
    TooFewPairs,       ///< fewer than fewestPairs()
    NoCommonTransform, ///< no transform takes enough pairs to each other
    Mirrored,          ///< a reflection fits clearly better than any rotation
    Undecided,         ///< two transforms explain as many pairs; both are candidates
    Stopped,
};

/// One of several transforms that explain a part of the pairs.
struct Candidate
{
    math::RigidTransform3D transform; ///< from points 2 to points 1
    double sigma = 0.0;               ///< of one coordinate
    std::vector<std::size_t> pairs;   ///< those that it explains
};

/// How an estimate ended.
struct Outcome
{
    Failure failure = Failure::None;
    std::string reason;                ///< of the failure, in English
    std::vector<Candidate> candidates; ///< for Undecided two, the better one first
};

/// What the residuals say about the parameters.
struct LUMO_CORE_EXPORT Uncertainty
{
    /// Of (omega, phi, kappa, tx, ty, tz, scale); zero for what is fixed. Infinite for the
    /// angles at gimbal lock (see RotationMatrix).
    Eigen::Matrix<double, 7, 7> covariance = Eigen::Matrix<double, 7, 7>::Zero();
    /// Degrees of freedom of sigma: 3 numbers a pair less the parameters.
    double redundancy = 0.0;

    /// Covariance of transform(point) for a point of set 2 that is known exactly.
    [[nodiscard]] Eigen::Matrix3d predict(const Eigen::Vector3d& point) const;
    /// By what predict()'s standard deviations grow to the half axes of the ellipsoid
    /// that contains the place with `probability` in (0, 1): sqrt(3 F), F the quantile of
    /// the F distribution of 3 and `redundancy` degrees of freedom.
    [[nodiscard]] double ellipsoidFactor(double probability) const;
    /// The same for `dimensions` parameters at once: sqrt(dimensions F).
    [[nodiscard]] double regionFactor(int dimensions, double probability) const;

    /// Of (rotation vector, translation at the centre, logarithm of the scale), where the
    /// rotation vector turns after R, about axes of set 1: without gimbal lock.
    Eigen::Matrix<double, 7, 7> local = Eigen::Matrix<double, 7, 7>::Zero();
    Eigen::Vector3d centre2 = Eigen::Vector3d::Zero();    ///< centroid of the right pairs, set 2
    Eigen::Matrix3d linear = Eigen::Matrix3d::Identity(); ///< scale R
};

/// |normalised| above it is an error at the level of 0.1 %: the two-sided normal quantile.
inline constexpr double kCriticalNormalised = 3.290526731;

/// The transform that was found, with its noise, its uncertainty, and a weight for each pair.
struct Estimate
{
    math::RigidTransform3D transform; ///< from points 2 to points 1
    /// Standard deviation of one coordinate. Where standard deviations were given, of one
    /// that was given the geometric mean of them.
    double sigma = 0.0;
    /// The factor that the given standard deviations need; sigma where none were given.
    double sigmaFactor = 0.0;
    /// How the noise differs by axis, with a product of 1; (1, 1, 1) where that does not show.
    Eigen::Vector3d axisFactors = Eigen::Vector3d::Ones();
    /// By pair: the probability that it is right; for a check point 0.
    std::vector<double> weights;
    /// By pair: its weight in the fit relative to a right one. Lower than `weights` where
    /// the noise has heavy tails and the residual is large.
    std::vector<double> fitWeights;
    double inlierRatio = 0.0; ///< mean weight of the pairs that are no check points
    Uncertainty uncertainty;
    /// By what the covariance exceeds that of least squares with Gaussian noise.
    double covarianceInflation = 1.0;
    /// A second transform that explains pairs which this one does not.
    std::optional<Candidate> second;
};

/// Finds the transform that takes most points 2 to points 1.
///
/// Noise is Gaussian, or of heavier tails; wrong pairs are off by anything. Given standard
/// deviations count as ratios: one common factor is estimated. Without them one noise
/// serves all pairs, equal on the axes unless the residuals of more than 48 pairs show
/// otherwise.
///
/// Up to 48 pairs, divisions into right and wrong pairs are compared by their evidence
/// (the probability of the points, with all parameters integrated out; D. MacKay, Neural
/// Computation 4(3), 1992); the transform is refused where none is clearly more probable than that
/// all are wrong. Of more pairs a mixture is estimated (A. Dempster, N. Laird, D. Rubin,
/// Journal of the Royal Statistical Society B 39(1), 1977).
///
/// \param[out] found  replaced unless it fails, else untouched
[[nodiscard]] LUMO_CORE_EXPORT Outcome
estimate(const PointPairs& pairs, const Options& options, Estimate& found);

/// The statistics of one pair.
struct PairStatistics
{
    Eigen::Vector3d residual; ///< point 1 - transform(point 2)
    Eigen::Vector3d sigma;    ///< of the pair's coordinates, as given times sigmaFactor
    /// By axis, 0 to 1: the share of an error of this pair that shows in its residual.
    Eigen::Vector3d redundancy;
    /// The residual under the transform of the other pairs.
    Eigen::Vector3d leaveOneOut;
    /// Residual over its standard deviation (W. Baarda, "A testing procedure for use in
    /// geodetic networks", 1968).
    Eigen::Vector3d normalised;
    /// The error of this pair on each axis that a test at 0.1 % finds with 80 %
    /// (Baarda 1968); infinite where the redundancy is 0.
    Eigen::Vector3d smallestDetectable;
};

/// The statistics of pair i, which may be a check point.
/// \param found  of `pairs`
[[nodiscard]] LUMO_CORE_EXPORT PairStatistics
examinePair(const PointPairs& pairs, const Estimate& found, std::size_t i);

} // namespace similarity
} // namespace lumo
