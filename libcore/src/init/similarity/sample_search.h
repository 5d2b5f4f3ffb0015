// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "init/similarity/model.h"
#include "init/similarity/share_score.h"

#include <functional>
#include <random>
#include <vector>

namespace lumo::similarity {

struct Found
{
    Model model;
    Share share;
};

struct SearchLimits
{
    std::size_t mostSamples = std::size_t{1} << 18;
    std::size_t kept = 1; ///< how many of the best models are wanted
};

struct SearchResult
{
    std::vector<Found> best; ///< the best score first; may be empty
    /// The models of the samples whose shapes agree best, as many as are wanted of the best.
    std::vector<Model> byShape;
    /// Whether the best explains clearly more than that all points 1 lie near one place.
    bool convincing = false;
    bool stopped = false;
};

/// Looks for models that take many pairs to each other: fits to samples of as few pairs
/// as determine a model, of which only those are fitted and scored whose shapes agree
/// best in both sets. All samples of up to 20 pairs, else random ones until one without a
/// wrong pair has been drawn but for a probability of 1e-4.
[[nodiscard]] SearchResult search(
    const Scene& scene, const Parameters& parameters, const SearchLimits& limits,
    std::mt19937& generator, const std::function<bool()>& shouldStop);

} // namespace lumo::similarity
