// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "init/similarity/length_mixture.h"
#include "init/similarity/sample_search.h"

#include <functional>
#include <optional>
#include <random>
#include <vector>

namespace lumo::similarity {

/// A model of many pairs with what was estimated along with it.
struct Mixed
{
    Model model;
    LengthMixture mixture;
    Parameters parameters;          ///< with the axes' precisions as estimated
    std::vector<double> fitWeights; ///< of the last fit
    std::vector<double> squares;    ///< of the model
};

struct ManyPairs
{
    std::optional<Mixed> best;   ///< none: no common transform, or stopped
    std::optional<Mixed> second; ///< of a sample of the pairs only: another motion
    double secondShare = 0.0;    ///< of all pairs
    bool undecided = false;      ///< both explain about as many
    bool stopped = false;
};

/// Estimates the model of many pairs: a search on a sample of them, a mixture on the
/// sample, the mixture on all pairs.
[[nodiscard]] ManyPairs estimateManyPairs(
    const Scene& scene, const Parameters& parameters, std::mt19937& generator,
    const std::function<bool()>& shouldStop);

} // namespace lumo::similarity
