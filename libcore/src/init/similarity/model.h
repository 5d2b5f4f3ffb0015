// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "init/similarity/scene.h"
#include "lumo/core/init/similarity.h"

#include <Eigen/Core>

#include <vector>

namespace lumo::similarity {

using Matrix7 = Eigen::Matrix<double, 7, 7>;
using Vector7 = Eigen::Matrix<double, 7, 1>;

/// scale R q + translation, in the units of a scene.
struct Model
{
    Eigen::Matrix3d rotation = Eigen::Matrix3d::Identity();
    double scale = 1.0;
    Eigen::Vector3d translation = Eigen::Vector3d::Zero();

    [[nodiscard]] Eigen::Vector3d apply(const Eigen::Vector3d& q) const
    {
        return scale * (rotation * q) + translation;
    }
};

/// What is fitted.
struct Parameters
{
    Freedom freedom = Freedom::Similarity;
    double fixedScale = 1.0; ///< in the units of a scene
    /// Inverse variances of the axes relative to each other, product 1.
    Eigen::Vector3d axisPrecision = Eigen::Vector3d::Ones();
    bool byAxis = false; ///< the axes, or those of some pairs, differ in precision
};

/// r_i^2: sum over the axes of squared residual times relative precision.
/// \param[out] squares  as many numbers as the scene has pairs, none below its rounding
void squaredResiduals(
    const Scene& scene, const Parameters& parameters, const Model& model,
    std::vector<double>& squares);

/// Weighted sums over pairs that a fit in closed form needs.
struct Moments
{
    double weight = 0.0;
    Eigen::Vector3d sum1 = Eigen::Vector3d::Zero();
    Eigen::Vector3d sum2 = Eigen::Vector3d::Zero();
    Eigen::Matrix3d cross = Eigen::Matrix3d::Zero(); ///< p q^T
    double square2 = 0.0;                            ///< |q|^2

    void add(const Eigen::Vector3d& p, const Eigen::Vector3d& q, double w);
};

/// The model with the smallest weighted sum of squares (B. Horn, Journal of the Optical
/// Society of America A 4(4), 1987: the rotation is the eigenvector of a symmetric 4x4
/// matrix). Exact for precisions that are equal on the axes.
[[nodiscard]] Model fit(const Moments& moments, const Parameters& parameters);

/// As fit() of all pairs with these weights, and, where precisions differ by axis, with
/// steps of Gauss and Newton to the exact minimum.
[[nodiscard]] Model fit(
    const Scene& scene, const Parameters& parameters, const std::vector<double>& weights);

/// The normal equations of (rotation vector, translation at `centre2`, logarithm of the
/// scale) for unit variance, at a model that is a fit to these weights but for what
/// precisions that differ by axis change.
struct Normal
{
    Matrix7 matrix = Matrix7::Zero();
    Vector7 right = Vector7::Zero();
    Eigen::Vector3d centre2 = Eigen::Vector3d::Zero();
};

[[nodiscard]] Normal normalEquations(
    const Scene& scene, const Parameters& parameters, const Model& model,
    const std::vector<double>& weights);

/// The indices of the local parameters that a freedom leaves free.
[[nodiscard]] const std::vector<Eigen::Index>& freeParameters(Freedom freedom);

/// The inverse over the free parameters, zero elsewhere.
/// \param[out] logDeterminant  of the matrix of the free parameters
/// \returns false if it is singular but for rounding
[[nodiscard]] bool invert(
    const Matrix7& matrix, Freedom freedom, Matrix7& inverse, double& logDeterminant);

/// Derivatives of the place scale R (q - centre) + ... by the local parameters, where
/// `arm` is scale R (q - centre2).
[[nodiscard]] Eigen::Matrix<double, 3, 7> derivativesOf(const Eigen::Vector3d& arm);

} // namespace lumo::similarity
