// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/mathematics/export.h"

#include <Eigen/Core>

namespace lumo {

/// Zero-mean Gaussian noise of a vector whose components are independent. The
/// variances are found from weighted samples: clear(), add() each sample,
/// finish().
///
/// A value; starts with variance 1 on each axis and nothing added; const calls
/// may run in parallel. Variances are in the square of the samples' unit.
/// Exists for double and three dimensions.
template <typename Scalar, int kDimension>
class GaussNoiseDiagonal
{
public:
    using Vector = Eigen::Matrix<Scalar, kDimension, 1>; ///< a sample, or a number per axis

    static constexpr Scalar kDefaultMinimumDeterminant = Scalar(0.01);
    static constexpr Scalar kDefaultMaximumDeterminant = Scalar(1e256);

    GaussNoiseDiagonal();

    /// The range that finish() keeps the determinant of the covariance in.
    /// \throws std::invalid_argument unless 0 < minimum <= maximum, both finite
    void setDeterminantBounds(Scalar minimum, Scalar maximum);

    /// Forgets the samples: sums and normalisation factor are 0 until finish().
    void clear();
    /// Counts a sample `value` as often as `weight` (not negative) says.
    void add(const Vector& value, Scalar weight)
    {
        m_variance += weight * value.cwiseAbs2();
        m_weightSum += weight;
    }
    /// Divides the sums by the weight sum and keeps the determinant within its
    /// bounds: one too small is raised by a common factor of all variances, or,
    /// when it is too small for that (below 1e-10), by making all variances the
    /// same; one too large by making all variances the same. A weight sum below
    /// the machine epsilon is an error in the log, and the variances are as for
    /// the largest determinant. A sum that is not a number stays visible as one.
    /// To be called once after each clear(): it divides what was added.
    /// \returns whether the variances are what was added says
    bool finish();

    [[nodiscard]] const Vector& variance() const noexcept { return m_variance; }
    [[nodiscard]] const Vector& inverseVariance() const noexcept { return m_inverseVariance; }
    [[nodiscard]] Scalar weightSum() const noexcept { return m_weightSum; }
    [[nodiscard]] Scalar minimumDeterminant() const noexcept { return m_minimumDeterminant; }
    [[nodiscard]] Scalar maximumDeterminant() const noexcept { return m_maximumDeterminant; }
    /// The density at zero: 1 / sqrt((2 pi)^dimension determinant).
    [[nodiscard]] Scalar normalisation() const noexcept { return m_normalisation; }
    /// Of the covariance matrix: the product of the variances.
    [[nodiscard]] Scalar determinant() const { return m_variance.prod(); }

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
