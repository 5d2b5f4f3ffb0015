// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "init/similarity/model.h"
#include "lumo/core/init/similarity.h"

namespace lumo::similarity {

/// A model in the caller's units.
[[nodiscard]] math::RigidTransform3D transformOf(const Scene& scene, const Model& model);

/// What the covariance is computed from.
struct Fitted
{
    const Scene& scene;
    const Parameters& parameters;
    const Model& model;
    const std::vector<double>& fitWeights;
    double covarianceFactor; ///< of the inverse normal matrix
    double redundancy;       ///< degrees of freedom
};

/// \returns false if the weighted pairs do not determine the parameters
[[nodiscard]] bool findUncertainty(const Fitted& fitted, Uncertainty& uncertainty);

} // namespace lumo::similarity
