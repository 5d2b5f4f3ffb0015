// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "init/similarity/sample_search.h"

#include <optional>
#include <random>
#include <vector>

namespace lumo::similarity {

/// Above it the mixture takes over: pairs are enough to estimate its shares from.
inline constexpr std::size_t kMostForEvidence = 48;

/// A division must be likelier by it than that all pairs are wrong: a factor of 20.
inline constexpr double kConvincing = 3.0;

/// A division of few pairs into right and wrong ones.
struct Division
{
    std::vector<double> right; ///< 1 or 0, by pair
    std::size_t count = 0;     ///< of the right ones
    Model model;               ///< fitted to them
    double variance = 0.0;     ///< of one coordinate, from their residuals
    double evidence = -1e300;  ///< logarithm
};

struct FewPairs
{
    Division best;
    std::vector<double> weights; ///< probability that a pair is right
    /// How much likelier the best division is than that all pairs are wrong: a logarithm.
    double gain = 0.0;
    std::optional<Division> second; ///< another motion of the remaining pairs
    std::optional<Division> rival;  ///< about as likely as the best, and it contradicts it
};

/// Compares divisions of at most kMostForEvidence pairs by their evidence: the probability
/// of the points with the parameters and the variance integrated out, Laplace's method for
/// the parameters. The length of a wrong pair's residual is anywhere in the volume, or,
/// where that is likelier, uniform in its logarithm: blunders of some sigma must pay for
/// more than those that are anywhere.
[[nodiscard]] FewPairs divideFewPairs(
    const Scene& scene, const Parameters& parameters, std::mt19937& generator);

} // namespace lumo::similarity
