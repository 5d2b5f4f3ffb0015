// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumo::similarity {

/// What the squared lengths of residuals are a mixture of: a Gaussian, perhaps a broader
/// one (together they are near to noise with heavy tails), wrong pairs that are anywhere in
/// the volume, and wrong pairs whose lengths are uniform in their logarithm. Estimated by
/// expectation maximisation on a histogram of eight bins an octave.
class LengthMixture
{
public:
    /// \param logVolume  logarithm of the volume that wrong pairs spread over
    /// \param parameters  of the transform that the residuals belong to: as many degrees of
    ///     freedom are gone
    LengthMixture(double logVolume, int parameters);

    /// Counts the squared lengths; forgets those before.
    void count(const std::vector<double>& squares);
    /// \param largest  where the `right` smallest lengths end: the start's variance is that
    ///     of which the median of these would be the median length
    void start(double largest, std::size_t right);
    /// Some steps of the estimate; tries a broad Gaussian when the lengths are too spread
    /// for one alone.
    void estimate();

    /// Weights for least squares, relative to a pair in the middle of the narrow Gaussian, and
    /// probabilities that the pairs are right. By the histogram, within 1 % of a weight.
    void weigh(const std::vector<double>& squares, std::vector<double>& fitWeights) const;
    void weighRight(const std::vector<double>& squares, std::vector<double>& probabilities) const;
    [[nodiscard]] double probability(double square) const;

    /// Sum of the probabilities.
    [[nodiscard]] double right() const { return m_narrow + m_broad; }
    /// Mean variance of the right pairs' coordinates.
    [[nodiscard]] double variance() const;
    [[nodiscard]] double narrowVariance() const { return m_narrowVariance; }
    /// By what the variance of a fit with these weights differs from that of one with the
    /// same normal matrix and unit variance (P. Huber, Robust Statistics, 1981, section 7.6).
    [[nodiscard]] double covarianceFactor() const;

private:
    struct Posterior
    {
        double narrow = 0.0;
        double broad = 0.0;
        double near = 0.0;
        double density = 0.0;
    };
    /// What is the same for all lengths.
    struct Densities
    {
        double narrow = 0.0, broad = 0.0, near = 0.0, far = 0.0; ///< share times factor
        double narrowExponent = 0.0, broadExponent = 0.0;
        double nearest = 0.0; ///< squared
    };

    [[nodiscard]] Densities densities() const;
    [[nodiscard]] static Posterior posteriorAt(const Densities& densities, double square);
    [[nodiscard]] double fitWeight(const Posterior& posterior) const;
    [[nodiscard]] double probability(const Posterior& posterior) const;
    template <typename Weight>
    void interpolate(
        const std::vector<double>& squares, const Weight& weight,
        std::vector<double>& result) const;
    [[nodiscard]] bool broadIsNoise() const;
    /// \returns the log likelihood before it, if that is wanted
    double step(bool likelihood);
    void steps(int most);
    void tryBroad();

    double m_logVolume;
    double m_parameters;
    std::vector<std::uint32_t> m_counts;
    std::size_t m_first = 0, m_last = 0; ///< bins that hold something
    double m_total = 0.0;
    double m_narrow = 0.0, m_broad = 0.0, m_near = 0.0; ///< pairs
    double m_narrowVariance = 1.0, m_broadVariance = 0.0;
};

} // namespace lumo::similarity
