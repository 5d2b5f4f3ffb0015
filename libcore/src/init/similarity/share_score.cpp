// SPDX-License-Identifier: Apache-2.0
#include "init/similarity/share_score.h"

#include "init/similarity/portable_math.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

namespace lumo::similarity {

namespace {

constexpr int kMantissaBits = 52;
constexpr int kSubdivisionBits = 2; // four bins an octave
constexpr int kExponentBias = 1023;
constexpr double kLogBall = 1.4324119583011810; // log(4 pi / 3)

} // namespace

ShareScore::ShareScore(std::size_t n, std::size_t sampleSize, double logVolume)
    : m_sampleSize(sampleSize)
    , m_logChoose(n + 1, 0.0)
{
    for (std::size_t bin = 0; bin < kBins; ++bin) {
        const double octave = std::ldexp(1.0, kLowestExponent + static_cast<int>(bin / 4));
        m_edge.push_back(octave * (1.0 + 0.25 * static_cast<double>(bin % 4 + 1)));
        m_gain.push_back(logVolume - 1.5 * portable::log(m_edge.back()) - kLogBall);
    }
    for (std::size_t k = 1; k <= n; ++k) {
        m_logChoose[k] = m_logChoose[k - 1] +
                         portable::log(static_cast<double>(n - k + 1) / static_cast<double>(k));
    }
}

Share ShareScore::of(const std::vector<double>& squares) const
{
    constexpr std::int64_t kFirst = static_cast<std::int64_t>(kExponentBias + kLowestExponent)
                                    << kSubdivisionBits;
    constexpr auto kLast = static_cast<std::int64_t>(kBins - 1);
    std::array<std::uint32_t, kBins> counts{};
    std::size_t lowest = kBins;
    std::size_t highest = 0;
    for (const double square : squares) {
        const std::int64_t leading =
            std::bit_cast<std::int64_t>(square) >> (kMantissaBits - kSubdivisionBits);
        const auto bin =
            static_cast<std::size_t>(std::clamp<std::int64_t>(leading - kFirst, 0, kLast));
        ++counts[bin];
        lowest = std::min(lowest, bin);
        highest = std::max(highest, bin);
    }
    Share best;
    std::size_t k = 0;
    for (std::size_t bin = lowest; bin <= highest; ++bin) {
        if (counts[bin] == 0) {
            continue;
        }
        k += counts[bin];
        if (k <= m_sampleSize) {
            continue;
        }
        const double score = static_cast<double>(k - m_sampleSize) * m_gain[bin] - m_logChoose[k];
        if (score > best.score) {
            best = {score, k, m_edge[bin]};
        }
    }
    return best;
}

} // namespace lumo::similarity
