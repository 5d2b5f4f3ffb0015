// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <vector>

namespace lumo::similarity {

/// The best division of the pairs into those that a model explains and those that it does
/// not, over all shares at once.
struct Share
{
    double score = -1e300;
    std::size_t count = 0; ///< pairs explained
    double square = 0.0;   ///< their largest squared residual, up to 19 %
};

/// Scores models by how much likelier their k smallest residuals are than chance,
///
///     S = max over k of (k - m) (log V - 1.5 log r_k^2 - log(4 pi / 3)) - log C(n, k):
///
/// k - m further pairs lie in a ball of radius r_k rather than anywhere in the volume V,
/// m being what determines the model; there are C(n, k) ways to choose k. No noise and no
/// share has to be known. r_k^2 is found in a histogram of four bins an octave, read from
/// the leading bits of the numbers.
class ShareScore
{
public:
    /// \param logVolume  log V, in the units of the residuals
    ShareScore(std::size_t n, std::size_t sampleSize, double logVolume);

    /// \param squares  n squared residuals
    [[nodiscard]] Share of(const std::vector<double>& squares) const;

private:
    static constexpr std::size_t kBins = 512;
    static constexpr int kLowestExponent = -100; ///< 2^-100: below the rounding of any scene

    std::size_t m_sampleSize;
    std::vector<double> m_gain;      ///< of each pair in the ball, by bin
    std::vector<double> m_edge;      ///< upper edge, by bin
    std::vector<double> m_logChoose; ///< log C(n, k)
};

} // namespace lumo::similarity
