// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/mathematics/export.h"

#include <Eigen/Core>

namespace lumo {

/// Zero-mean Gaussian noise of a vector with independent components. Estimates the
/// variances from weighted samples: call clear(), add() for each sample, then finish().
///
/// A value; starts with variance 1 on each axis and nothing added; const calls
/// may run in parallel. Variances are in the square of the samples' unit.
/// Instantiated for double and three dimensions only.
template <typename Scalar, int kDimension>
class GaussNoiseDiagonal
{
public:
    using Vector = Eigen::Matrix<Scalar, kDimension, 1>; ///< a sample, or a number per axis

    static constexpr Scalar kDefaultMinimumDeterminant = Scalar(0.01);
    static constexpr Scalar kDefaultMaximumDeterminant = Scalar(1e256);

    GaussNoiseDiagonal();

    /// Sets the range to which finish() limits the determinant of the covariance.
    /// \throws std::invalid_argument unless 0 < minimum <= maximum, both finite
    void setDeterminantBounds(Scalar minimum, Scalar maximum);

    /// Forgets the samples; variances and normalisation factor are 0 until finish().
    void clear();
    /// Adds a sample. `weight` >= 0 is its multiplicity, not necessarily whole.
    void add(const Vector& value, Scalar weight)
    {
        m_variance += weight * value.cwiseAbs2();
        m_weightSum += weight;
    }
    /// Divides the sums by the weight sum and limits the determinant to its bounds.
    /// - Below the minimum: multiplies all variances by one factor; if the determinant is
    ///   below 1e-10, where that factor would be arbitrary, sets all to the same value.
    /// - Above the maximum: sets all variances to the same value.
    /// - Weight sum below the machine epsilon: logs an error and uses the maximum.
    /// A sum that is NaN gives variances that are NaN. Call this once after each clear():
    /// a second call would divide again.
    /// \returns false if a bound replaced the variances of the samples
    bool finish();

    [[nodiscard]] const Vector& variance() const noexcept { return m_variance; }
    [[nodiscard]] const Vector& inverseVariance() const noexcept { return m_inverseVariance; }
    [[nodiscard]] Scalar weightSum() const noexcept { return m_weightSum; }
    [[nodiscard]] Scalar minimumDeterminant() const noexcept { return m_minimumDeterminant; }
    [[nodiscard]] Scalar maximumDeterminant() const noexcept { return m_maximumDeterminant; }
    /// The density at zero: 1 / sqrt((2 pi)^dimension determinant).
    [[nodiscard]] Scalar normalisation() const noexcept { return m_normalisation; }
    /// Determinant of the covariance matrix: the product of the variances. Where rounding
    /// alone keeps that from a bound it is the bound exactly, so that two determinants that
    /// were raised to the bound are equal.
    [[nodiscard]] Scalar determinant() const;

    /// normalisation * exp(-1/2 sum of value_k^2 / variance_k).
    [[nodiscard]] Scalar density(const Vector& value) const;

    /// Logs the variances and their product.
    void print() const;

private:
    bool clampDeterminant();

    Vector m_variance;
    Vector m_inverseVariance;
    Scalar m_weightSum;
    Scalar m_minimumDeterminant;
    Scalar m_maximumDeterminant;
    Scalar m_normalisation;
};

extern template class LUMO_MATHEMATICS_EXPORT GaussNoiseDiagonal<double, 3>;

} // namespace lumo
