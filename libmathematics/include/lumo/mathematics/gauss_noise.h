// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/mathematics/export.h"

namespace lumo {

/// Zero-mean Gaussian noise of one number, whose variance is found from
/// weighted samples: clear(), add() each sample, finish().
///
/// A value; starts with variance 1 and nothing added; const calls may run in
/// parallel. Variances are in the square of the samples' unit.
class LUMO_MATHEMATICS_EXPORT GaussNoise
{
public:
    static constexpr double kDefaultMinimum = 0.01;
    static constexpr double kDefaultMaximum = 1e20;

    /// The range that finish() keeps the variance in.
    /// \throws std::invalid_argument unless 0 < minimum <= maximum, both finite
    void setBounds(double minimum, double maximum);

    /// Forgets the samples; the variance stays until finish().
    void clear();
    /// Counts a sample `value` as often as `weight` (not negative) says.
    void add(double value, double weight);
    /// Sets the variance to the weighted mean square, kept within the bounds.
    /// Without samples, or when their sum is not a number, it is the maximum:
    /// nothing is known.
    /// \returns whether the bounds changed nothing
    bool finish();

    [[nodiscard]] double variance() const noexcept { return m_variance; }
    [[nodiscard]] double sumOfSquares() const noexcept { return m_sumOfSquares; }
    [[nodiscard]] double weightSum() const noexcept { return m_weightSum; }
    [[nodiscard]] double minimum() const noexcept { return m_minimum; }
    [[nodiscard]] double maximum() const noexcept { return m_maximum; }

    /// exp(-value^2 / (2 variance)) / sqrt(2 pi variance).
    [[nodiscard]] double density(double value) const;

    /// Logs the variance (for one number also the determinant).
    void print() const;

private:
    double m_variance = 1.0;
    double m_sumOfSquares = 0.0;
    double m_weightSum = 0.0;
    double m_minimum = kDefaultMinimum;
    double m_maximum = kDefaultMaximum;
};

} // namespace lumo
