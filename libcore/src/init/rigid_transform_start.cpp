// SPDX-License-Identifier: Apache-2.0
// How OptimiseRigidTransform3D finds the transform to start from.
#include "init/geometry_progress.h"
#include "init/rigid_residuals.h"
#include "lumo/core/init/lumo_optimize_rigid_transform_3d.h"
#include "lumo/foundation/log.h"
#include "lumo/mathematics/random_indices.h"
#include "lumo/mathematics/transform_optimisation.h"

#include <Eigen/Geometry>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <stdexcept>

namespace lumo {

namespace {

constexpr double kShortest = 1e-12; // in units of the points, and as the sine of an angle

} // namespace

/// Where the random search stands.
struct OptimiseRigidTransform3D::Trials
{
    std::uint32_t counter = 0;
    double best = 0.0;
    math::RigidTransform3D bestTransform;
    bool weightsAreOld = false; ///< the last sample was given up before it had any
};

bool OptimiseRigidTransform3D::init()
{
    if (m_points1.size() != m_points2.size()) {
        log::important() << "OptimiseRigidTransform3D::init() poi1/2";
        return false;
    }
    switch (m_points1.size()) {
    case 0:
        return false;
    case 1:
        return init1();
    case 2:
        return init2();
    case 3:
        return init3();
    case 4:
        return init4();
    default:
        return initFromSamples();
    }
}

void OptimiseRigidTransform3D::logCounts() const
{
    log::debug() << "OptimiseRigidTransform3D::init() nrPoints " << m_points1.size() << " poi1/2 "
                 << m_points1.size() << " " << m_points2.size() << " nrTrialCorr " << m_nrTrialCorr;
}

void OptimiseRigidTransform3D::logPairs() const
{
    for (std::size_t i = 0; i < m_points1.size(); ++i) {
        const Eigen::Vector3d p1 = centred1(i);
        const Eigen::Vector3d p2 = centred2(i);
        log::debug() << p1[0] << p1[1] << p1[2] << p2[0] << p2[1] << p2[2];
    }
}

bool OptimiseRigidTransform3D::init1()
{
    logCounts();
    logPairs();
    m_transform = {RotationMatrix(), centred1(0) - centred2(0), 1.0};
    return true;
}

bool OptimiseRigidTransform3D::init2()
{
    const Eigen::Vector3d d1 = centred1(1) - centred1(0);
    const Eigen::Vector3d d2 = centred2(1) - centred2(0);
    const double length1 = d1.norm();
    const double length2 = d2.norm();
    if (length1 < kShortest || length2 < kShortest) {
        return init1();
    }
    logCounts();
    logPairs();
    const Eigen::Vector3d u1 = d1 / length1;
    const Eigen::Vector3d u2 = d2 / length2;
    const Eigen::Vector3d axis = u2.cross(u1);
    const double sine = axis.norm();
    RotationMatrix rotation = m_transform.rotation();
    if (sine > kShortest) {
        rotation.setAngleAxis(axis / sine, u2.dot(u1), sine);
    }
    const double scale = length1 / length2;
    m_transform = {rotation, centred1(0) - scale * (rotation * centred2(0)), scale};
    return true;
}

bool OptimiseRigidTransform3D::init3()
{
    return initFromFirst(3);
}

bool OptimiseRigidTransform3D::init4()
{
    return initFromFirst(4);
}

bool OptimiseRigidTransform3D::initFromFirst(std::size_t count)
{
    logCounts();
    if (m_rng == nullptr) {
        log::important() << "OptimiseRigidTransform3D::init() random rumbers not defined";
        return false;
    }
    if (m_points1.size() != m_points2.size() || m_points1.size() < count) {
        log::important() << "OptimiseRigidTransform3D::init() poi1/2";
        return false;
    }
    const QString number = QString::number(count);
    log::debug() << "error init" + number + " " << computeMedian();
    std::vector<std::uint32_t> first(count);
    std::iota(first.begin(), first.end(), 0u);
    // A fit that fails leaves the transform as it is, which is what there is to start from.
    static_cast<void>(estimateTransform(first));
    log::debug() << "med init" + number + " opt " << computeMedian();
    return true;
}

bool OptimiseRigidTransform3D::initFromSamples()
{
    if (m_rng == nullptr) {
        log::important() << "OptimiseRigidTransform3D::init() random number generator not defined";
        return false;
    }
    m_nrTrialCorr = std::min(m_nrTrialCorr, static_cast<std::uint32_t>(m_points1.size()));
    logCounts();
    Trials trials;
    trials.best = computeMedian();
    log::debug() << "median init " << trials.best;
    trials.bestTransform = m_transform;
    log::info() << "Transform init.";
    if (trials.best >= m_medianStop) {
        runTrials(trials);
    }
    m_transform = trials.bestTransform;
    log::debug() << "med best " << trials.best << " nrTrials " << trials.counter;
    return true;
}

void OptimiseRigidTransform3D::runTrials(Trials& trials)
{
    const auto last = static_cast<std::uint32_t>(m_points1.size() - 1);
    do {
        geometryProgress::report(
            trials.counter, m_nrTrials, QStringLiteral("Transform init."));
        ++trials.counter;
        const std::vector<std::uint32_t> sample =
            random::randomUniformIndices(0, last, m_nrTrialCorr, m_rng);
        if (!sample.empty() && estimateTransform(sample)) {
            scoreSample(trials);
        }
    } while (trials.counter <= m_nrTrials && trials.best >= m_medianStop &&
             !(m_shouldStop && m_shouldStop()));
    if (trials.weightsAreOld) {
        static_cast<void>(median(false));
    }
}

void OptimiseRigidTransform3D::scoreSample(Trials& trials)
{
    trials.weightsAreOld = !m_logSamples && scoresAbove(trials.best);
    if (trials.weightsAreOld) {
        return;
    }
    const double score = median(m_logSamples);
    if (score <= trials.best) {
        trials.best = score;
        trials.bestTransform = m_transform;
    }
    if (m_logSamples) {
        log::debug() << trials.counter << " best " << trials.best << "(" << m_medianStop << ") ";
    }
}

bool OptimiseRigidTransform3D::scoresAbove(double best) const
{
    // The quantile of squares is above a bound when more of them are than may
    // follow it. The bound is so far above best^2 that its root, rounded, is
    // above best.
    const double bound = best * best * (1.0 + 4.0 * std::numeric_limits<double>::epsilon()) +
                         std::numeric_limits<double>::min();
    const std::size_t n = m_weights.size();
    const std::size_t mayFollow = n - 1 - quantileIndex();
    const rigidResiduals::Columns pairs{m_columns.data(), n};
    constexpr std::size_t kBlock = 128;
    std::array<double, kBlock> d;
    std::size_t above = 0;
    for (std::size_t first = 0; first < n; first += kBlock) {
        const std::size_t last = std::min(first + kBlock, n);
        rigidResiduals::squaredLengths(pairs, m_transform, first, last, d.data());
        for (std::size_t i = 0; i < last - first; ++i) {
            above += d[i] > bound ? 1 : 0;
        }
        if (above > mayFollow) {
            return true;
        }
    }
    return false;
}

bool OptimiseRigidTransform3D::estimateTransform(const std::vector<std::uint32_t>& sample)
{
    Points sample1;
    Points sample2;
    Points sigmas;
    for (const std::uint32_t i : sample) {
        sample1.push_back(centred1(i));
        sample2.push_back(centred2(i));
        sigmas.push_back(sigma(i));
    }
    return math::transformOptimisation::estimateTransform(sample1, sample2, sigmas, m_transform);
}

std::size_t OptimiseRigidTransform3D::quantileIndex() const
{
    const double position = (1.0 - m_outlierRatio) * static_cast<double>(m_weights.size());
    return std::min(static_cast<std::size_t>(position), m_weights.size() - 1);
}

double OptimiseRigidTransform3D::computeMedian()
{
    return median(true);
}

double OptimiseRigidTransform3D::median(bool log)
{
    const std::size_t n = m_weights.size();
    if (n == 0) {
        throw std::logic_error("empty container");
    }
    rigidResiduals::squaredLengths({m_columns.data(), n}, m_transform, 0, n, m_weights.data());
    std::copy(m_weights.begin(), m_weights.end(), m_scratch.begin());
    const std::size_t k = quantileIndex();
    const auto position = m_scratch.begin() + static_cast<std::ptrdiff_t>(k);
    std::nth_element(m_scratch.begin(), position, m_scratch.end());
    const double quantile = *position;
    std::size_t inliers = 0;
    for (double& weight : m_weights) {
        const bool inlier = weight < 2.0 * quantile;
        weight = inlier ? 1.0 : 0.0;
        inliers += inlier ? 1 : 0;
    }
    const double score = std::sqrt(quantile);
    if (log) {
        log::debug() << "computeOutliers median " << score << " pos " << k << "/" << n;
        log::debug() << "nr Inliers " << inliers << " "
                     << 100.0 * static_cast<double>(inliers) / static_cast<double>(n) << "%";
    }
    return score;
}

} // namespace lumo
