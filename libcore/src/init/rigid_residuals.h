// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/mathematics/rigid_transform_3d.h"

#include <Eigen/Core>

#include <array>
#include <cstddef>
#include <vector>

/// The loops over all pairs of points of a rigid transform estimate. They run
/// along columns, so that a compiler can work on several pairs at once, and
/// each pair's numbers are computed by the same operations in the same order
/// wherever it stands.
namespace lumo::rigidResiduals {

/// Pairs of points and their standard deviations; not owned.
struct Columns
{
    const double* data = nullptr; ///< 9 columns of `size` numbers: points 1, points 2, sigmas
    std::size_t size = 0;

    [[nodiscard]] const double* column(std::size_t i) const { return data + i * size; }
};

constexpr std::size_t kColumns = 9;

/// Entry i of a list: 0 points 1, 1 points 2, 2 sigmas.
[[nodiscard]] Eigen::Vector3d listed(const Columns& pairs, std::size_t list, std::size_t i);

/// The 9 columns of three lists of equal length.
[[nodiscard]] std::vector<double> columnsOf(
    const std::vector<Eigen::Vector3d>& points1, const std::vector<Eigen::Vector3d>& points2,
    const std::vector<Eigen::Vector3d>& sigmas);

/// (p1 - transform(p2)) / sigma of pair i.
[[nodiscard]] Eigen::Vector3d normalised(
    const Columns& pairs, const math::RigidTransform3D& transform, std::size_t i);

/// The squared lengths of the normalised residuals of the pairs first .. last - 1.
/// \param[out] d  last - first numbers
void squaredLengths(
    const Columns& pairs, const math::RigidTransform3D& transform, std::size_t first,
    std::size_t last, double* d);

/// What the solver works on: pairs with a weight each.
struct Weighted
{
    Columns pairs;
    const double* weights = nullptr; ///< one for each pair; not owned
    Eigen::Vector3d inverseVariance;
};

/// The functions [3i + k], and their derivatives by (omega, phi, kappa, tx, ty,
/// tz, scale) in columns of `leadingDimension` numbers.
void functions(const Weighted& weighted, const double* x, double* f);
void jacobian(const Weighted& weighted, const double* x, double* jac, std::size_t leadingDimension);

/// A copy of the first pairs and of those whose weight is not 0. For a solver
/// they are as good as all: other rows of zeros add nothing to any of its sums,
/// and leave their rounding as it is (as long as no number is above 1e12, where
/// the norm's guard against overflow depends on the number of rows).
class WithoutZeroWeights
{
public:
    explicit WithoutZeroWeights(const Weighted& all);
    WithoutZeroWeights(const WithoutZeroWeights&) = delete;
    WithoutZeroWeights& operator=(const WithoutZeroWeights&) = delete;
    /// Refers to this object, or, when nothing would be won, to what it was made from.
    [[nodiscard]] const Weighted& rows() const { return m_rows; }

private:
    std::vector<double> m_columns;
    std::vector<double> m_weights;
    Weighted m_rows;
};

} // namespace lumo::rigidResiduals
