// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/mathematics/rigid_transform_3d.h"

#include <Eigen/Core>

#include <numbers>
#include <random>
#include <vector>

namespace lumo {

/// Pairs of points that a known transform and known noise made, some of them wrong.
struct RigidScene
{
    struct Kind
    {
        std::size_t n = 100;
        double outlierShare = 0.0;
        double scale = 1.0;
        double noise = 0.01;  ///< standard deviation, unit of points 1
        double offset = 0.0;  ///< of points 1
        double extent = 10.0; ///< of points 2, unit of points 2
        bool anisotropic = false;
    };

    RigidScene(const Kind& kind, std::mt19937& rng)
    {
        std::uniform_real_distribution<double> uniform(-1.0, 1.0);
        std::normal_distribution<double> normal;
        const auto randomVector = [&] {
            return Eigen::Vector3d(uniform(rng), uniform(rng), uniform(rng));
        };
        const Eigen::Vector3d angles = randomVector() * std::numbers::pi;
        RotationMatrix rotation;
        rotation.set(angles[0], angles[1], angles[2]);
        const double size = kind.scale * kind.extent; // of points 1
        truth = {
            rotation, size * randomVector() + Eigen::Vector3d::Constant(kind.offset), kind.scale};
        const auto outliers =
            static_cast<std::size_t>(kind.outlierShare * static_cast<double>(kind.n));
        for (std::size_t i = 0; i < kind.n; ++i) {
            const double factor = kind.anisotropic ? 1.0 + static_cast<double>(i % 3) : 1.0;
            sigmas.push_back(
                kind.noise * factor *
                (kind.anisotropic ? Eigen::Vector3d(1, 1, 3) : Eigen::Vector3d(1, 1, 1)));
            points2.push_back(kind.extent * randomVector());
            const Eigen::Vector3d error(normal(rng), normal(rng), normal(rng));
            points1.emplace_back(
                truth.transform(points2.back()) + sigmas.back().cwiseProduct(error));
            inlier.push_back(i >= outliers);
            if (i < outliers) {
                points1.back() += 3.0 * size * randomVector();
            }
        }
    }

    math::RigidTransform3D truth; ///< from points 2 to points 1
    std::vector<Eigen::Vector3d> points1, points2, sigmas;
    std::vector<bool> inlier;
};

} // namespace lumo
