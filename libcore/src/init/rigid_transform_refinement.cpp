// SPDX-License-Identifier: Apache-2.0
// OptimiseRigidTransform3D: refining the transform.
#include "init/rigid_residuals.h"
#include "lumo/core/init/lumo_optimize_rigid_transform_3d.h"
#include "lumo/foundation/log.h"
#include "lumo/optimisation/gauss_mixture_model.h"
#include "lumo/optimisation/levenberg_marquardt.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <tuple>

namespace lumo {

namespace {

using rigidResiduals::Columns;
using rigidResiduals::Weighted;
using Noise = GaussNoiseDiagonal<double, 3>;

constexpr int kParameters = 7;
constexpr double kTolerance = 1e-14;
constexpr double kSmallestWeightSum = 1e-5;
constexpr std::size_t kFewestForNoise = 4;
constexpr double kNoDeterminant = 1e256;
/// Of such a length, in sigmas, a residual is an outlier's, and its square still a number.
constexpr double kLargestResidual = 1e140;

/// Sets all weights to 1, with a warning, where their sum vanishes or the pairs are too few.
/// \returns the sum of the weights then
double resetSmallWeights(double sum, std::vector<double>& weights)
{
    const std::size_t n = weights.size();
    if (sum > kSmallestWeightSum && n >= kFewestForNoise) {
        return sum;
    }
    log::warning() << "WARNING small weight " << sum << " / nrPoints " << n;
    std::fill(weights.begin(), weights.end(), 1.0);
    return static_cast<double>(n);
}

/// \returns the sum of the weights
double updateWeights(
    const Columns& pairs, const math::RigidTransform3D& transform, double pOut, const Noise& noise,
    std::vector<double>& weights)
{
    // A density far above that of outliers would round to 1.
    constexpr double kLargestWeight = 1.0 - std::numeric_limits<double>::epsilon() / 2.0;
    const Eigen::Vector3d& inverse = noise.inverseVariance();
    double sum = 0.0;
    for (std::size_t i = 0; i < pairs.size; ++i) {
        const Eigen::Vector3d e = rigidResiduals::normalised(pairs, transform, i);
        const double exponent =
            e[0] * e[0] * inverse[0] + e[1] * e[1] * inverse[1] + e[2] * e[2] * inverse[2];
        const double p = noise.normalisation() * std::exp(-0.5 * exponent);
        weights[i] = std::min(p / (p + pOut), kLargestWeight);
        sum += weights[i];
    }
    return sum;
}

/// One noise update: the noise from the weights, then the weights from the noise.
/// \returns the sum of the weights
double updateNoise(
    const Columns& pairs, const math::RigidTransform3D& transform, double pOut, Noise& noise,
    std::vector<double>& weights)
{
    static_cast<void>(
        resetSmallWeights(std::accumulate(weights.begin(), weights.end(), 0.0), weights));
    noise.clear();
    for (std::size_t i = 0; i < pairs.size; ++i) {
        noise.add(rigidResiduals::normalised(pairs, transform, i), weights[i]);
    }
    noise.finish();
    const double sum =
        resetSmallWeights(updateWeights(pairs, transform, pOut, noise, weights), weights);
    const Eigen::Vector3d& variance = noise.variance();
    log::debug() << "compute noise with tol pOut: " << pOut
                 << " inlierRatio: " << sum / static_cast<double>(pairs.size)
                 << " det: " << noise.determinant() << " cov: " << variance[0] << variance[1]
                 << variance[2];
    return sum;
}

} // namespace

void OptimiseRigidTransform3D::g(const double* x, double* f) const
{
    const Columns pairs{m_columns.data(), m_weights.size()};
    rigidResiduals::functions({pairs, m_weights.data(), m_noise.inverseVariance()}, x, f);
}

void OptimiseRigidTransform3D::dg(const double* x, double* jac) const
{
    const Columns pairs{m_columns.data(), m_weights.size()};
    rigidResiduals::jacobian(
        {pairs, m_weights.data(), m_noise.inverseVariance()}, x, jac, 3 * pairs.size);
}

double OptimiseRigidTransform3D::computeEnergy() const
{
    std::vector<double> d(m_weights.size());
    rigidResiduals::squaredLengths(
        {m_columns.data(), d.size()}, m_transform, 0, d.size(), d.data());
    double sum = 0.0;
    double weightSum = 0.0;
    for (std::size_t i = 0; i < d.size(); ++i) {
        sum += m_weights[i] * d[i];
        weightSum += m_weights[i];
    }
    return sum / weightSum;
}

void OptimiseRigidTransform3D::initNoise()
{
    const Columns pairs{m_columns.data(), m_weights.size()};
    Points residuals;
    residuals.reserve(pairs.size);
    for (std::size_t i = 0; i < pairs.size; ++i) {
        const Eigen::Array3d e = rigidResiduals::normalised(pairs, m_transform, i).array();
        residuals.push_back(
            e.isFinite().select(e, kLargestResidual).min(kLargestResidual).max(-kLargestResidual));
    }
    std::tie(m_noise, m_pOut) =
        gaussMixtureModel::estimateNoiseAndOutlierProbability(residuals, m_weights);
}

void OptimiseRigidTransform3D::computeNoise(int iterations)
{
    double sum = 0.0;
    for (int i = 0; i < iterations; ++i) {
        sum = updateNoise(
            {m_columns.data(), m_weights.size()}, m_transform, m_pOut, m_noise, m_weights);
    }
    m_inlierRatio = sum / static_cast<double>(m_weights.size());
}

void OptimiseRigidTransform3D::optimizeLevenbergMarquardt(
    void* object, double* x, int n, int m, double tolerance, int verbose)
{
    const auto& weighted = *static_cast<const Weighted*>(object);
    // How it ended does not matter: x is the best found in any case.
    static_cast<void>(optimization::levenbergMarquardt(
        {.residuals = [&](const double* at,
                          double* f) { rigidResiduals::functions(weighted, at, f); },
         .jacobian =
             [&](const double* at, double* jac) {
                 rigidResiduals::jacobian(weighted, at, jac, 3 * weighted.pairs.size);
             }},
        x, n, m, tolerance, verbose));
}

void OptimiseRigidTransform3D::compute()
{
    log::debug() << "OptimiseRigidTransform3D::compute() " << m_points1.size() << m_points2.size();
    if (m_weights.empty()) {
        return;
    }
    log::debug() << "OptimiseRigidTransform3D::compute(): error init " << computeEnergy();
    initNoise();
    m_noise.print();
    double bestDet = kNoDeterminant;
    Eigen::VectorXd x = m_transform.parameters();
    Eigen::VectorXd bestX = x;
    double bestInlierRatio = m_inlierRatio;
    const auto goesOn = [this, &bestDet](std::uint32_t r) {
        return (bestDet >= m_noiseVolumeStop && r < m_maxIterations) || r <= 2;
    };
    for (std::uint32_t r = 0; goesOn(r) && !(m_shouldStop && m_shouldStop()); ++r) {
        const rigidResiduals::WithoutZeroWeights active(
            {{m_columns.data(), m_weights.size()}, m_weights.data(), m_noise.inverseVariance()});
        Weighted rows = active.rows();
        optimizeLevenbergMarquardt(
            &rows, x.data(), kParameters, static_cast<int>(3 * rows.pairs.size), kTolerance, 0);
        m_transform.set(x);
        computeNoise(1);
        const double det = m_noise.determinant();
        if (bestDet >= det && x.allFinite()) {
            bestDet = det;
            bestX = x;
            bestInlierRatio = m_inlierRatio;
        }
    }
    m_transform.set(bestX);
    m_noise.print();
    log::debug() << "OptimiseRigidTransform3D::compute(): error opt " << computeEnergy() << " det "
                 << bestDet << " inlierratio " << bestInlierRatio;
}

} // namespace lumo
