// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/mathematics/gauss_noise_diagonal.h"
#include "lumo/mathematics/random_indices.h"
#include "lumo/mathematics/transform_optimisation.h"
#include "lumo/optimisation/gauss_mixture_model.h"
#include "lumo/optimisation/levenberg_marquardt.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

namespace lumo {

/// The robust rigid transform estimate, one step after the other and point by
/// point: every sample is scored in full, and the solver sees every point. The
/// numbers are to be those of OptimiseRigidTransform3D to the last bit; each
/// residual is computed by the same operations in the same order.
class PlainRigidEstimate
{
public:
    using Points = std::vector<Eigen::Vector3d>;

    PlainRigidEstimate(const Points& points1, const Points& points2, const Points& allSigmas)
        : sigmas(allSigmas)
        , weights(points1.size(), 1.0)
    {
        noise.setDeterminantBounds(1e-6, 1e256);
        const auto centred = [](const Points& points) {
            Eigen::Vector3d sum = Eigen::Vector3d::Zero();
            for (const Eigen::Vector3d& point : points) {
                sum += point;
            }
            const Eigen::Vector3d centre = sum / static_cast<double>(points.size());
            Points result;
            for (const Eigen::Vector3d& point : points) {
                result.push_back(point - centre);
            }
            return result;
        };
        centred1 = centred(points1);
        centred2 = centred(points2);
    }

    Eigen::Vector3d residual(std::size_t i) const
    {
        const Eigen::Matrix3d& r = transform.rotation().matrix();
        const Eigen::Vector3d& p = centred2[i];
        Eigen::Vector3d e;
        for (Eigen::Index k = 0; k < 3; ++k) {
            const double turned = r(k, 0) * p[0] + r(k, 1) * p[1] + r(k, 2) * p[2];
            const double moved = transform.scale() * turned + transform.translation()[k];
            e[k] = (centred1[i][k] - moved) / sigmas[i][k];
        }
        return e;
    }

    double score()
    {
        const std::size_t n = weights.size();
        for (std::size_t i = 0; i < n; ++i) {
            const Eigen::Vector3d e = residual(i);
            weights[i] = e[0] * e[0] + e[1] * e[1] + e[2] * e[2];
        }
        std::vector<double> sorted = weights;
        std::sort(sorted.begin(), sorted.end());
        const auto k = static_cast<std::size_t>((1.0 - outlierRatio) * static_cast<double>(n));
        const double q = sorted[std::min(k, n - 1)];
        for (double& weight : weights) {
            weight = weight < 2.0 * q ? 1.0 : 0.0;
        }
        return std::sqrt(q);
    }

    /// For five points and more.
    void init(std::mt19937& rng)
    {
        const auto n = static_cast<std::uint32_t>(weights.size());
        double best = score();
        math::RigidTransform3D bestTransform = transform;
        for (samples = 0; best >= 0.5 && samples <= 200; ++samples) {
            Points some[3];
            for (const auto i : random::randomUniformIndices(0, n - 1, std::min(3u, n), &rng)) {
                some[0].push_back(centred1[i]);
                some[1].push_back(centred2[i]);
                some[2].push_back(sigmas[i]);
            }
            if (!math::transformOptimisation::estimateTransform(
                    some[0], some[1], some[2], transform)) {
                continue;
            }
            const double m = score();
            if (m <= best) {
                best = m;
                bestTransform = transform;
            }
        }
        transform = bestTransform;
    }

    void updateNoise()
    {
        const auto sumOfWeights = [this] {
            const double sum = std::accumulate(weights.begin(), weights.end(), 0.0);
            if (sum > 1e-5 && weights.size() >= 4) {
                return sum;
            }
            weights.assign(weights.size(), 1.0);
            return static_cast<double>(weights.size());
        };
        sumOfWeights();
        noise.clear();
        for (std::size_t i = 0; i < weights.size(); ++i) {
            noise.add(residual(i), weights[i]);
        }
        noise.finish();
        const Eigen::Vector3d& inverse = noise.inverseVariance();
        for (std::size_t i = 0; i < weights.size(); ++i) {
            const Eigen::Vector3d e = residual(i);
            const double sum =
                e[0] * e[0] * inverse[0] + e[1] * e[1] * inverse[1] + e[2] * e[2] * inverse[2];
            const double p = noise.normalisation() * std::exp(-0.5 * sum);
            weights[i] = std::min(p / (p + pOut), 1.0 - std::numeric_limits<double>::epsilon() / 2);
        }
        sumOfWeights();
    }

    void compute(const optimization::LeastSquaresFunctions& functions)
    {
        Points residuals;
        for (std::size_t i = 0; i < weights.size(); ++i) {
            residuals.push_back(residual(i));
        }
        std::tie(noise, pOut) =
            gaussMixtureModel::estimateNoiseAndOutlierProbability(residuals, weights);
        double bestDet = 1e256;
        Eigen::VectorXd x = transform.parameters();
        Eigen::VectorXd bestX = x;
        for (int r = 0; (bestDet >= 0.2 && r < 20) || r <= 2; ++r) {
            static_cast<void>(optimization::levenbergMarquardt(
                functions, x.data(), 7, static_cast<int>(3 * weights.size()), 1e-14, 0));
            transform.set(x);
            updateNoise();
            if (bestDet >= noise.determinant()) {
                bestDet = noise.determinant();
                bestX = x;
            }
            ++refinements;
        }
        transform.set(bestX);
    }

    double outlierRatio = 0.3;
    int samples = 0;
    int refinements = 0;
    Points centred1, centred2, sigmas;
    std::vector<double> weights;
    GaussNoiseDiagonal<double, 3> noise;
    double pOut = 0.0;
    math::RigidTransform3D transform;
};

} // namespace lumo
