// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/init/lumo_optimize_rigid_transform_3d.h"
#include "lumo/foundation/log.h"
#include "rigid_scene.h"

#include <algorithm>
#include <random>
#include <vector>

namespace lumo {

/// The private state and steps that tests look at.
struct OptimiseRigidTransform3DAccess
{
    static void setSolverState(
        OptimiseRigidTransform3D& estimate, const std::vector<double>& weights,
        const GaussNoiseDiagonal<double, 3>& noise)
    {
        estimate.m_weights = weights;
        estimate.m_noise = noise;
    }
    static void computeNoise(OptimiseRigidTransform3D& estimate) { estimate.computeNoise(1); }
    static const math::RigidTransform3D& transform(const OptimiseRigidTransform3D& estimate)
    {
        return estimate.m_transform;
    }
    static double score(const OptimiseRigidTransform3D& estimate, double& threshold)
    {
        return estimate.computeScore(0.0, threshold);
    }
    static double scoreHist(const OptimiseRigidTransform3D& estimate, double& threshold)
    {
        return estimate.computeScoreHist(0.0, threshold);
    }
};

inline OptimiseRigidTransform3D estimateOf(const RigidScene& scene, std::mt19937* rng)
{
    return {scene.points1, scene.points2, scene.sigmas, rng};
}

inline std::vector<double> weightsOf(const OptimiseRigidTransform3D& estimate, std::size_t n)
{
    std::vector<double> weights(n);
    for (std::size_t i = 0; i < n; ++i) {
        weights[i] = estimate.getWeight(static_cast<int>(i));
    }
    return weights;
}

/// Largest distance between what two transforms make of the points 2, in sigmas.
inline double largestError(const RigidScene& scene, const math::RigidTransform3D& transform)
{
    double largest = 0.0;
    for (std::size_t i = 0; i < scene.points2.size(); ++i) {
        const Eigen::Vector3d error =
            transform.transform(scene.points2[i]) - scene.truth.transform(scene.points2[i]);
        largest = std::max(largest, error.norm() / scene.sigmas[i].maxCoeff());
    }
    return largest;
}

inline long countLines(const log::Capture& logged, const char* part)
{
    const std::vector<log::Record> records = logged.records();
    return std::count_if(records.begin(), records.end(), [part](const log::Record& record) {
        return record.text.contains(part);
    });
}

} // namespace lumo
