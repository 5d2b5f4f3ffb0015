// SPDX-License-Identifier: Apache-2.0
#include "init/similarity/sample_search.h"

#include "init/similarity/portable_math.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <utility>

namespace lumo::similarity {

namespace {

constexpr std::size_t kFewForAll = 20; // 1,140 triples
constexpr std::size_t kFewForAllKept = 64;
constexpr std::size_t kRefits = 4;
/// Of samples without a wrong pair about so many are also shaped well enough.
constexpr double kWellShaped = 0.3;
constexpr double kMissed = 1e-4;
/// What the score of one place must be exceeded by: a factor, as it grows with the number
/// of pairs, and a difference, for few.
constexpr double kPlaceFactor = 1.2;
constexpr double kPlaceMargin = 12.0;

struct Sample
{
    std::array<std::uint32_t, 3> pairs{};
    double key = 0.0; ///< how far the shapes in both sets differ; smaller is better
};

double squaredDistance(const Scene& scene, std::size_t set, std::size_t i, std::size_t j)
{
    return (scene.point(set, i) - scene.point(set, j)).squaredNorm();
}

/// How the ratios of the squared sides differ, relative, and squared; over the flatness,
/// as noise changes a flat triangle's sides less than the fit to it.
double keyOfTriple(const Scene& scene, const Parameters& parameters, const Sample& sample)
{
    const auto& [i, j, k] = sample.pairs;
    const std::array<std::array<std::uint32_t, 2>, 3> sides{{{i, j}, {j, k}, {k, i}}};
    std::array<double, 3> first{};
    const bool fixed = parameters.freedom == Freedom::FixedScale;
    const double given = parameters.fixedScale * parameters.fixedScale;
    double lowest = fixed ? given : 1e300;
    double highest = fixed ? given : 0.0;
    for (std::size_t side = 0; side < 3; ++side) {
        first[side] = squaredDistance(scene, 0, sides[side][0], sides[side][1]);
        const double second = squaredDistance(scene, 1, sides[side][0], sides[side][1]);
        const double ratio = first[side] / std::max(second, 1e-300);
        lowest = std::min(lowest, ratio);
        highest = std::max(highest, ratio);
    }
    const double a = first[0];
    const double b = first[1];
    const double c = first[2];
    // 16 times the squared area (Heron), relative to the longest side: at most 3.
    const double longest = std::max({a, b, c});
    const double area = 2.0 * (a * b + b * c + c * a) - (a * a + b * b + c * c);
    const double flatness = area / std::max(longest * longest, 1e-300);
    const double difference = (highest - lowest) / std::max(highest + lowest, 1e-300);
    return flatness > 1e-12 ? difference * difference / flatness : 1e300;
}

/// Of two pairs that a rotation about z and a scale take to each other: the heights.
double keyOfTwo(const Scene& scene, const Sample& sample)
{
    const Eigen::Vector3d d1 = scene.point(0, sample.pairs[0]) - scene.point(0, sample.pairs[1]);
    const Eigen::Vector3d d2 = scene.point(1, sample.pairs[0]) - scene.point(1, sample.pairs[1]);
    const double plane1 = d1.head<2>().squaredNorm();
    const double plane2 = d2.head<2>().squaredNorm();
    if (!(plane1 > 1e-12 * d1.squaredNorm() && plane2 > 1e-12 * d2.squaredNorm())) {
        return 1e300;
    }
    const double scale = d1.norm() / d2.norm();
    const double height = d1[2] - scale * d2[2];
    return height * height / plane1;
}

class Search
{
public:
    Search(
        const Scene& scene, const Parameters& parameters, const SearchLimits& limits,
        std::mt19937& generator)
        : m_scene(scene)
        , m_parameters(parameters)
        , m_limits(limits)
        , m_generator(generator)
        , m_sampleSize(fewestPairs(parameters.freedom))
        , m_score(scene.size(), m_sampleSize, scene.logVolume)
    {
        Model place; // the median of points 1, where a scene has its origin
        place.scale = 0.0;
        squaredResiduals(scene, parameters, place, m_squares);
        m_place = m_score.of(m_squares).score;
    }

    SearchResult run(const std::function<bool()>& shouldStop)
    {
        const std::size_t n = m_scene.size();
        SearchResult result;
        if (n <= kFewForAll || m_sampleSize == 1) {
            tryBatch(allSamples(), kFewForAllKept);
        } else {
            const std::size_t large = n < 400 ? 256 : 512;
            std::size_t drawn = 0;
            for (std::size_t size = 128; drawn < neededSamples(); size = large) {
                if (shouldStop && shouldStop()) {
                    result.stopped = true;
                    return result;
                }
                tryBatch(randomSamples(size), m_limits.kept > 1 ? 12 : 6);
                drawn += size;
            }
        }
        result.convincing = convincing();
        result.best = std::move(m_best);
        for (const auto& [key, model] : m_byShape) {
            result.byShape.push_back(model);
        }
        return result;
    }

private:
    [[nodiscard]] bool convincing() const
    {
        return !m_best.empty() &&
               m_best.front().share.score > kPlaceFactor * std::max(m_place, 0.0) + kPlaceMargin;
    }

    [[nodiscard]] std::size_t neededSamples() const
    {
        const std::size_t few = std::min<std::size_t>(m_limits.mostSamples, 1024);
        if (m_best.empty() || (!convincing() && m_scene.size() > 48)) {
            return m_limits.mostSamples;
        }
        const double share =
            static_cast<double>(m_best.front().share.count) / static_cast<double>(m_scene.size());
        double right = kWellShaped;
        for (std::size_t i = 0; i < m_sampleSize; ++i) {
            right *= share;
        }
        const double needed = portable::log(kMissed) / portable::log(std::max(1.0 - right, 1e-9));
        // Few pairs have many starts that are nearly as good: their evidence decides.
        const auto least = static_cast<double>(m_limits.kept > 1 ? few : 1);
        return static_cast<std::size_t>(
            std::min(std::max(needed, least), static_cast<double>(m_limits.mostSamples)));
    }

    [[nodiscard]] double keyOf(const Sample& sample) const
    {
        if (m_sampleSize == 1) {
            return 0.0;
        }
        return m_sampleSize == 2 ? keyOfTwo(m_scene, sample)
                                 : keyOfTriple(m_scene, m_parameters, sample);
    }

    [[nodiscard]] std::vector<Sample> allSamples() const
    {
        const auto n = static_cast<std::uint32_t>(m_scene.size());
        std::vector<Sample> samples;
        for (std::uint32_t i = 0; i < n; ++i) {
            if (m_sampleSize == 1) {
                samples.push_back({{i, i, i}, 0.0});
                continue;
            }
            for (std::uint32_t j = i + 1; j < n; ++j) {
                if (m_sampleSize == 2) {
                    samples.push_back({{i, j, j}, 0.0});
                    continue;
                }
                for (std::uint32_t k = j + 1; k < n; ++k) {
                    samples.push_back({{i, j, k}, 0.0});
                }
            }
        }
        return samples;
    }

    [[nodiscard]] std::vector<Sample> randomSamples(std::size_t count)
    {
        const auto n = static_cast<std::uint32_t>(m_scene.size());
        std::vector<Sample> samples(count);
        for (Sample& sample : samples) {
            for (std::size_t i = 0; i < m_sampleSize; ++i) {
                // Equal ones give a flat triangle, which no key makes a good one.
                sample.pairs[i] = portable::below(n, m_generator);
            }
        }
        return samples;
    }

    void tryBatch(std::vector<Sample> samples, std::size_t kept)
    {
        for (Sample& sample : samples) {
            sample.key = keyOf(sample);
        }
        const std::size_t some =
            m_sampleSize == 1 ? samples.size() : std::min(kept, samples.size());
        const auto byKey = [](const Sample& a, const Sample& b) {
            return a.key != b.key ? a.key < b.key : a.pairs < b.pairs;
        };
        const auto end = samples.begin() + static_cast<std::ptrdiff_t>(some);
        std::partial_sort(samples.begin(), end, samples.end(), byKey);
        std::vector<Found> found;
        for (auto sample = samples.begin(); sample != end && sample->key < 1e300; ++sample) {
            found.push_back(scored(modelOf(*sample)));
            if (m_limits.kept > 1) {
                m_byShape.emplace_back(sample->key, found.back().model);
            }
        }
        std::stable_sort(m_byShape.begin(), m_byShape.end(), [](const auto& a, const auto& b) {
            return a.first < b.first;
        });
        m_byShape.resize(std::min(m_byShape.size(), m_limits.kept));
        const auto byScore = [](const Found& a, const Found& b) {
            return a.share.score > b.share.score;
        };
        std::stable_sort(found.begin(), found.end(), byScore);
        const std::size_t refined = std::min(found.size(), m_limits.kept > 1 ? m_limits.kept : 2);
        for (std::size_t i = 0; i < refined; ++i) {
            found[i] = refine(found[i]);
        }
        m_best.insert(m_best.end(), found.begin(), found.end());
        std::stable_sort(m_best.begin(), m_best.end(), byScore);
        // The same pairs, reached from different samples, give the same model.
        const auto same = [](const Found& a, const Found& b) {
            constexpr double kRounding = 1e-9;
            return a.share.score == b.share.score &&
                   std::abs(a.model.scale - b.model.scale) <= kRounding * a.model.scale &&
                   (a.model.rotation - b.model.rotation).squaredNorm() <= kRounding * kRounding;
        };
        m_best.erase(std::unique(m_best.begin(), m_best.end(), same), m_best.end());
        if (m_best.size() > m_limits.kept) {
            m_best.resize(m_limits.kept);
        }
    }

    [[nodiscard]] Model modelOf(const Sample& sample) const
    {
        Moments moments;
        for (std::size_t i = 0; i < m_sampleSize; ++i) {
            const std::uint32_t pair = sample.pairs[i];
            moments.add(
                m_scene.point(0, pair), m_scene.point(1, pair), m_scene.meanPrecisionOf(pair));
        }
        return fit(moments, m_parameters);
    }

    [[nodiscard]] Found scored(const Model& model)
    {
        squaredResiduals(m_scene, m_parameters, model, m_squares);
        return {model, m_score.of(m_squares)};
    }

    /// Fits to all pairs within reach, as long as the score rises.
    [[nodiscard]] Found refine(Found found)
    {
        for (std::size_t i = 0; i < kRefits; ++i) {
            squaredResiduals(m_scene, m_parameters, found.model, m_squares);
            Moments moments;
            for (std::size_t pair = 0; pair < m_squares.size(); ++pair) {
                if (m_squares[pair] <= found.share.square) {
                    moments.add(
                        m_scene.point(0, pair), m_scene.point(1, pair),
                        m_scene.meanPrecisionOf(pair));
                }
            }
            const Found next = scored(fit(moments, m_parameters));
            if (!(next.share.score > found.share.score)) {
                break;
            }
            found = next;
        }
        return found;
    }

    const Scene& m_scene;
    const Parameters& m_parameters;
    SearchLimits m_limits;
    std::mt19937& m_generator;
    std::size_t m_sampleSize;
    ShareScore m_score;
    double m_place = 0.0;
    std::vector<Found> m_best;
    std::vector<std::pair<double, Model>> m_byShape;
    std::vector<double> m_squares;
};

} // namespace

SearchResult search(
    const Scene& scene, const Parameters& parameters, const SearchLimits& limits,
    std::mt19937& generator, const std::function<bool()>& shouldStop)
{
    return Search(scene, parameters, limits, generator).run(shouldStop);
}

} // namespace lumo::similarity
