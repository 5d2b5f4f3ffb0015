// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/mathematics/random_indices.h"

#include <Eigen/Geometry>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace lumo {

/// What one would write instead: samples of three pairs, a residual threshold
/// that is known, a truncated quadratic score, and refits to the inliers. The
/// columns of the matrices are points.
class PlainRansac
{
public:
    PlainRansac(const Eigen::Matrix3Xd& to, const Eigen::Matrix3Xd& from, double threshold)
        : m_to(to)
        , m_from(from)
        , m_bound(threshold * threshold)
    {}

    Eigen::Matrix4d run(std::mt19937& rng)
    {
        const auto last = static_cast<std::uint32_t>(m_to.cols() - 1);
        Eigen::Matrix4d best = Eigen::Matrix4d::Identity();
        double bestScore = score(best);
        double needed = 1000.0;
        for (double trial = 0.0; trial < needed; ++trial) {
            const std::vector<std::uint32_t> sample =
                random::randomUniformIndices(0, last, 3, &rng);
            const Eigen::Matrix4d candidate = fit({sample.begin(), sample.end()});
            const double candidateScore = score(candidate);
            if (candidateScore < bestScore) {
                bestScore = candidateScore;
                best = candidate;
                // Samples until one has been free of outliers with 99.9 %.
                const double share = static_cast<double>(inliers(best).size()) / (last + 1.0);
                needed = std::min(needed, std::log(0.001) / std::log1p(-std::pow(share, 3)));
            }
        }
        for (int refit = 0; refit < 3; ++refit) {
            const std::vector<Eigen::Index> some = inliers(best);
            if (some.size() < 3) {
                break;
            }
            best = fit(some);
        }
        return best;
    }

    [[nodiscard]] std::vector<Eigen::Index> inliers(const Eigen::Matrix4d& transform) const
    {
        std::vector<Eigen::Index> result;
        for (Eigen::Index i = 0; i < m_to.cols(); ++i) {
            if (squaredResidual(transform, i) < m_bound) {
                result.push_back(i);
            }
        }
        return result;
    }

private:
    [[nodiscard]] Eigen::Matrix4d fit(const std::vector<Eigen::Index>& some) const
    {
        const Eigen::Matrix3Xd from = m_from(Eigen::all, some);
        const Eigen::Matrix3Xd to = m_to(Eigen::all, some);
        return Eigen::umeyama(from, to, true);
    }

    [[nodiscard]] double squaredResidual(const Eigen::Matrix4d& transform, Eigen::Index i) const
    {
        const Eigen::Vector3d moved =
            transform.topLeftCorner<3, 3>() * m_from.col(i) + transform.topRightCorner<3, 1>();
        return (m_to.col(i) - moved).squaredNorm();
    }

    [[nodiscard]] double score(const Eigen::Matrix4d& transform) const
    {
        double sum = 0.0;
        for (Eigen::Index i = 0; i < m_to.cols(); ++i) {
            sum += std::min(squaredResidual(transform, i), m_bound);
        }
        return sum;
    }

    const Eigen::Matrix3Xd& m_to;
    const Eigen::Matrix3Xd& m_from;
    double m_bound;
};

} // namespace lumo
