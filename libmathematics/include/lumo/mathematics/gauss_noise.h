// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/mathematics/export.h"

namespace lumo {

/// Zero-mean Gaussian noise of one number. Estimates the variance from weighted samples:
/// call clear(), add() for each sample, then finish().
///
/// A value; starts with variance 1 and nothing added; const calls may run in
/// parallel. Variances are in the square of the samples' unit.
class LUMO_MATHEMATICS_EXPORT GaussNoise
{
public:
    static constexpr double kDefaultMinimum = 0.01;
    static constexpr double kDefaultMaximum = 1e20;

    /// Sets the range to which finish() limits the variance.
    /// \throws std::invalid_argument unless 0 < minimum <= maximum, both finite
    void setBounds(double minimum, double maximum);

    /// Forgets the samples; variance() keeps its value until finish().
    void clear();
    /// Adds a sample. `weight` >= 0 is its multiplicity, not necessarily whole.
    void add(double value, double weight);
    /// Sets the variance to the weighted mean square, limited to the bounds. Without
    /// samples, or if a sum is not a number, sets it to the maximum: the noise is unknown.
    /// \returns false if the variance is a bound instead of the mean square
    bool finish();

    [[nodiscard]] double variance() const noexcept { return m_variance; }
    [[nodiscard]] double sumOfSquares() const noexcept { return m_sumOfSquares; }
    [[nodiscard]] double weightSum() const noexcept { return m_weightSum; }
    [[nodiscard]] double minimum() const noexcept { return m_minimum; }
    [[nodiscard]] double maximum() const noexcept { return m_maximum; }

    /// exp(-value^2 / (2 variance)) / sqrt(2 pi variance).
    [[nodiscard]] double density(double value) const;

    /// Logs the variance, twice: it also is the determinant.
    void print() const;

private:
    double m_variance = 1.0;
    double m_sumOfSquares = 0.0;
    double m_weightSum = 0.0;
    double m_minimum = kDefaultMinimum;
    double m_maximum = kDefaultMaximum;
};

} // namespace lumo
