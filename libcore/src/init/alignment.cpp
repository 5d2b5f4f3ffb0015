// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/init/alignment.h"

#include "init/alignment_geometry.h"
#include "init/geometry_progress.h"
#include "lumo/core/init/lumo_optimize_rigid_transform_3d.h"

#include <Eigen/Geometry>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <stdexcept>
#include <utility>

namespace lumo {
namespace {

/// A reflection fits clearly better when it leaves less than this share of the
/// residuals.
constexpr double kClearlyBetter = 0.5;
/// Residuals of this share of the extent are nothing but rounding.
constexpr double kPerfectFit = 1e-9;

using Points = std::vector<Eigen::Vector3d>;

/// What is estimated from; refers to lists of its maker's.
struct Problem
{
    const Points& points1;
    const Points& points2;
    const Points& sigmas;
    const AlignmentOptions& options;
};

void check(const AlignmentOptions& options)
{
    if (!(options.outlierRatio >= 0.0 && options.outlierRatio < 1.0)) {
        throw std::invalid_argument("the share of outliers is not in [0, 1)");
    }
    if (options.samplePairs < 3) {
        throw std::invalid_argument("a sample has fewer than 3 pairs");
    }
}

double extent(const Points& points)
{
    Eigen::AlignedBox3d box;
    for (const Eigen::Vector3d& point : points) {
        box.extend(point);
    }
    return box.diagonal().norm();
}

OptimiseRigidTransform3D makeEstimate(const Problem& problem, std::mt19937& generator)
{
    generator.seed(problem.options.seed);
    OptimiseRigidTransform3D estimate(problem.points1, problem.points2, problem.sigmas, &generator);
    // The score is the residual that comes next after the assumed share of inliers:
    // where exactly that share is right it would be that of an outlier.
    const double onePair = 1.0 / static_cast<double>(problem.points1.size());
    estimate.setOutlierRatio(std::min(1.0, problem.options.outlierRatio + onePair));
    estimate.setNrSample(problem.options.samplePairs);
    estimate.setLogSamples(false);
    estimate.setStopRequest(geometryProgress::stopRequested);
    return estimate;
}

/// The transform that the random search ends with, if it does.
std::optional<math::RigidTransform3D> search(const Problem& problem)
{
    std::mt19937 generator;
    OptimiseRigidTransform3D estimate = makeEstimate(problem, generator);
    if (!estimate.init()) {
        return std::nullopt;
    }
    return estimate.getTransform();
}

/// One standard deviation for all coordinates. The search stops early at
/// residuals of half of it, so the first one is told a very small one, which
/// makes it draw all its samples.
Points estimateSigmas(const PointPairs& pairs, const AlignmentOptions& options)
{
    double offset = 0.0;
    for (const Eigen::Vector3d& point : pairs.points1) {
        offset = std::max(offset, point.cwiseAbs().maxCoeff());
    }
    const double rounding = std::numeric_limits<double>::epsilon() * offset;
    const double smallest = std::max({1e-12 * extent(pairs.points1), 4.0 * rounding, 1e-50});
    Points sigmas(pairs.points1.size(), Eigen::Vector3d::Constant(smallest));
    const auto transform = search({pairs.points1, pairs.points2, sigmas, options});
    if (transform) {
        // Half of those that are taken for inliers: the median length of a Gaussian
        // vector of three components is 1.538 of their standard deviations.
        constexpr double kMedianLength = 1.538;
        const double median = residualQuantile(
            pairs.points1, pairs.points2, *transform, 0.5 * (1.0 - options.outlierRatio));
        const double sigma = std::max(smallest, median / kMedianLength);
        std::fill(sigmas.begin(), sigmas.end(), Eigen::Vector3d::Constant(sigma));
    }
    return sigmas;
}

/// The points seen in a mirror.
Points mirrored(Points points)
{
    for (Eigen::Vector3d& point : points) {
        point.z() = -point.z();
    }
    return points;
}

bool fitsMirrored(const Problem& problem, const Alignment& alignment)
{
    const double share = 1.0 - problem.options.outlierRatio;
    const double residual =
        residualQuantile(problem.points1, problem.points2, alignment.transform, share);
    if (residual <= kPerfectFit * extent(problem.points1)) {
        return false;
    }
    const Points mirror = mirrored(problem.points2);
    const auto transform = search({problem.points1, mirror, problem.sigmas, problem.options});
    return transform &&
           residualQuantile(problem.points1, mirror, *transform, share) < kClearlyBetter * residual;
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

bool estimate(const Problem& problem, Alignment& alignment, QString& error)
{
    std::mt19937 generator;
    OptimiseRigidTransform3D estimate = makeEstimate(problem, generator);
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
    for (std::size_t i = 0; i < problem.points1.size(); ++i) {
        alignment.weights.push_back(estimate.getWeight(static_cast<int>(i)));
    }
    return true;
}

bool alignWithSigmas(
    const PointPairs& pairs, const Points& sigmas, const AlignmentOptions& options,
    Alignment& result, QString& error)
{
    const Problem problem{pairs.points1, pairs.points2, sigmas, options};
    Alignment alignment;
    if (!estimate(problem, alignment, error)) {
        return false;
    }
    judge(pairs, alignment);
    alignment.degeneracy = examinePoints(pairs);
    if (alignment.degeneracy == Degeneracy::None) {
        // First the mirror: the few that fit in spite of one lie near a plane.
        alignment.degeneracy = fitsMirrored(problem, alignment) ? Degeneracy::Mirrored
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
        Alignment found;
        QString fault;
        const bool done =
            pairs.sigmas.empty()
                ? alignWithSigmas(pairs, estimateSigmas(pairs, options), options, found, fault)
                : alignWithSigmas(pairs, pairs.sigmas, options, found, fault);
        if (!done || geometryProgress::stopRequested()) {
            error = geometryProgress::stopRequested() ? QStringLiteral("stopped") : fault;
            return false;
        }
        alignment = std::move(found);
        return true;
    } catch (const std::exception& fault) { // lists that do not fit, numbers out of range
        error = QString::fromUtf8(fault.what());
        return false;
    }
}

} // namespace lumo
