// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/init/alignment.h"

#include "init/alignment_geometry.h"
#include "lumo/core/init/lumo_optimize_rigid_transform_3d.h"

#include <Eigen/Geometry>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <stdexcept>

namespace lumo {
namespace {

constexpr double kInlierWeight = 0.5;
/// A reflection fits clearly better when it leaves less than this share of the
/// residuals.
constexpr double kClearlyBetter = 0.5;
/// Residuals of this share of the extent are nothing but rounding.
constexpr double kPerfectFit = 1e-9;

void check(const AlignmentOptions& options)
{
    if (!(options.outlierRatio >= 0.0 && options.outlierRatio < 1.0)) {
        throw std::invalid_argument("the share of outliers is not in [0, 1)");
    }
    if (options.samplePairs < 3) {
        throw std::invalid_argument("a sample has fewer than 3 pairs");
    }
}

double extent(const std::vector<Eigen::Vector3d>& points)
{
    Eigen::AlignedBox3d box;
    for (const Eigen::Vector3d& point : points) {
        box.extend(point);
    }
    return box.diagonal().norm();
}

OptimiseRigidTransform3D makeEstimate(
    const PointPairs& pairs, const AlignmentOptions& options, std::mt19937& generator)
{
    generator.seed(options.seed);
    OptimiseRigidTransform3D estimate(pairs.points1, pairs.points2, pairs.sigmas, &generator);
    // The score is the residual that comes next after the assumed share of inliers:
    // where exactly that share is right it would be that of an outlier.
    const double onePair = 1.0 / static_cast<double>(pairs.points1.size());
    estimate.setOutlierRatio(std::min(1.0, options.outlierRatio + onePair));
    estimate.setNrSample(options.samplePairs);
    estimate.setLogSamples(false);
    return estimate;
}

/// The transform that the random search ends with, if it does.
std::optional<math::RigidTransform3D> search(
    const PointPairs& pairs, const AlignmentOptions& options)
{
    std::mt19937 generator;
    OptimiseRigidTransform3D estimate = makeEstimate(pairs, options, generator);
    if (!estimate.init()) {
        return std::nullopt;
    }
    return estimate.getTransform();
}

/// One standard deviation for all coordinates. The search stops early at
/// residuals of half of it, so the first one is told a very small one, which
/// makes it draw all its samples.
double estimateSigma(PointPairs pairs, const AlignmentOptions& options)
{
    const double size = extent(pairs.points1);
    double offset = 0.0;
    for (const Eigen::Vector3d& point : pairs.points1) {
        offset = std::max(offset, point.cwiseAbs().maxCoeff());
    }
    const double rounding = std::numeric_limits<double>::epsilon() * offset;
    const double smallest = std::max({1e-12 * size, 4.0 * rounding, 1e-50});
    pairs.sigmas.assign(pairs.points1.size(), Eigen::Vector3d::Constant(smallest));
    const auto transform = search(pairs, options);
    if (!transform) {
        return smallest;
    }
    // Half of those that are taken for inliers: the median length of a Gaussian
    // vector of three components is 1.538 of their standard deviations.
    constexpr double kMedianLength = 1.538;
    const double median = residualQuantile(pairs, *transform, 0.5 * (1.0 - options.outlierRatio));
    return std::max(smallest, median / kMedianLength);
}

/// The same pairs with set 2 seen in a mirror.
PointPairs mirrored(PointPairs pairs)
{
    for (Eigen::Vector3d& point : pairs.points2) {
        point.z() = -point.z();
    }
    return pairs;
}

bool fitsMirrored(
    const PointPairs& pairs, const AlignmentOptions& options, const Alignment& alignment)
{
    const double share = 1.0 - options.outlierRatio;
    const double residual = residualQuantile(pairs, alignment.transform, share);
    if (residual <= kPerfectFit * extent(pairs.points1)) {
        return false;
    }
    const PointPairs mirror = mirrored(pairs);
    const auto transform = search(mirror, options);
    return transform && residualQuantile(mirror, *transform, share) < kClearlyBetter * residual;
}

void judge(const PointPairs& pairs, Alignment& alignment)
{
    double squares = 0.0;
    double weights = 0.0;
    for (std::size_t i = 0; i < pairs.points1.size(); ++i) {
        alignment.residuals.push_back(
            pairs.points1[i] - alignment.transform.transform(pairs.points2[i]));
        weights += alignment.weights[i];
        if (alignment.weights[i] >= kInlierWeight) {
            ++alignment.inliers;
            squares += alignment.residuals[i].squaredNorm();
        }
    }
    alignment.inlierRatio = weights / static_cast<double>(pairs.points1.size());
    if (alignment.inliers > 0) {
        alignment.rmsInliers = std::sqrt(squares / static_cast<double>(alignment.inliers));
    }
}

bool estimate(
    const PointPairs& pairs, const AlignmentOptions& options, Alignment& alignment, QString& error)
{
    std::mt19937 generator;
    OptimiseRigidTransform3D estimate = makeEstimate(pairs, options, generator);
    if (!estimate.init()) {
        error = QStringLiteral("no transform to start from was found");
        return false;
    }
    estimate.compute();
    alignment.transform = estimate.getTransform();
    if (!alignment.transform.isFinite()) {
        error = QStringLiteral("no finite transform was found");
        return false;
    }
    for (std::size_t i = 0; i < pairs.points1.size(); ++i) {
        alignment.weights.push_back(estimate.getWeight(static_cast<int>(i)));
    }
    return true;
}

bool alignWithSigmas(
    const PointPairs& pairs, const AlignmentOptions& options, Alignment& result, QString& error)
{
    Alignment alignment;
    if (!estimate(pairs, options, alignment, error)) {
        return false;
    }
    judge(pairs, alignment);
    alignment.degeneracy = examinePoints(pairs);
    if (alignment.degeneracy == Degeneracy::None) {
        // First the mirror: the few that fit in spite of one lie near a plane.
        alignment.degeneracy = fitsMirrored(pairs, options, alignment)
                                   ? Degeneracy::Mirrored
                                   : examineInliers(pairs, alignment);
    }
    result = std::move(alignment);
    return true;
}

} // namespace

bool isArbitrary(Degeneracy degeneracy)
{
    return degeneracy == Degeneracy::Coincident || degeneracy == Degeneracy::Collinear ||
           degeneracy == Degeneracy::TooFew;
}

QString text::toString(Degeneracy degeneracy)
{
    switch (degeneracy) {
    case Degeneracy::None:
        return QStringLiteral("none");
    case Degeneracy::Coincident:
        return QStringLiteral("coincident");
    case Degeneracy::Collinear:
        return QStringLiteral("collinear");
    case Degeneracy::Coplanar:
        return QStringLiteral("coplanar");
    case Degeneracy::Mirrored:
        return QStringLiteral("mirrored");
    case Degeneracy::TooFew:
        return QStringLiteral("tooFew");
    }
    return {};
}

bool align(
    const PointPairs& pairs, const AlignmentOptions& options, Alignment& alignment, QString& error)
{
    check(options);
    if (pairs.points1.empty()) {
        error = QStringLiteral("there are no point pairs");
        return false;
    }
    try {
        if (!pairs.sigmas.empty()) {
            return alignWithSigmas(pairs, options, alignment, error);
        }
        PointPairs withSigmas = pairs;
        withSigmas.sigmas.assign(
            pairs.points1.size(), Eigen::Vector3d::Constant(estimateSigma(pairs, options)));
        return alignWithSigmas(withSigmas, options, alignment, error);
    } catch (const std::exception& fault) { // lists that do not fit, numbers out of range
        error = QString::fromUtf8(fault.what());
        return false;
    }
}

} // namespace lumo
