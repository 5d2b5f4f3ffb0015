// SPDX-License-Identifier: Apache-2.0
#include "init/similarity/length_mixture.h"

#include "init/similarity/portable_math.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace lumo::similarity {

namespace {

constexpr int kSubdivisionBits = 3; // eight bins an octave
constexpr int kLowestExponent = -110;
constexpr std::size_t kBins = 8 * 160;
constexpr int kShift = 52 - kSubdivisionBits;
constexpr std::int64_t kFirstBin = static_cast<std::int64_t>(1023 + kLowestExponent)
                                   << kSubdivisionBits;

constexpr double kLog2Pi = 1.8378770664093453;
constexpr double kLogNear = 4.834; // see evidence.cpp
constexpr double kNearest = 9.0;
constexpr double kMedianSquare = 2.366; // of chi square with 3 degrees of freedom
/// Broader than 8 narrow standard deviations, a second Gaussian is one of wrong pairs.
constexpr double kBroadest = 64.0;

std::size_t binOf(double square)
{
    const std::int64_t leading = std::bit_cast<std::int64_t>(square) >> kShift;
    return static_cast<std::size_t>(
        std::clamp<std::int64_t>(leading - kFirstBin, 0, static_cast<std::int64_t>(kBins - 2)));
}

struct Bins
{
    Bins()
    {
        for (std::size_t bin = 0; bin < kBins; ++bin) {
            const double octave = std::ldexp(1.0, kLowestExponent + static_cast<int>(bin / 8));
            edge.push_back(octave * (1.0 + 0.125 * static_cast<double>(bin % 8)));
        }
        for (std::size_t bin = 0; bin + 1 < kBins; ++bin) {
            centre.push_back(0.5 * (edge[bin] + edge[bin + 1]));
        }
    }
    std::vector<double> edge, centre;
};

const Bins& bins()
{
    static const Bins instance;
    return instance;
}

} // namespace

LengthMixture::LengthMixture(double logVolume, int parameters)
    : m_logVolume(logVolume)
    , m_parameters(parameters)
    , m_counts(kBins, 0)
{}

void LengthMixture::count(const std::vector<double>& squares)
{
    std::fill(m_counts.begin(), m_counts.end(), 0U);
    for (const double square : squares) {
        ++m_counts[binOf(square)];
    }
    m_first = 0;
    while (m_counts[m_first] == 0) {
        ++m_first;
    }
    m_last = kBins - 1;
    while (m_counts[m_last] == 0) {
        --m_last;
    }
    const double before = m_total;
    m_total = static_cast<double>(squares.size());
    if (before > 0.0) { // the same shares of another number of pairs
        for (double* const pairs : {&m_narrow, &m_broad, &m_near}) {
            *pairs *= m_total / before;
        }
    }
}

void LengthMixture::start(double largest, std::size_t right)
{
    std::size_t sum = 0;
    std::size_t bin = m_first;
    while (bin < m_last && bins().edge[bin] < largest) {
        sum += m_counts[bin];
        if (2 * sum >= right) {
            break;
        }
        ++bin;
    }
    m_narrowVariance = bins().centre[bin] / kMedianSquare;
    m_narrow = std::min(static_cast<double>(right), m_total);
    m_broad = 0.0;
    m_near = 0.5 * (m_total - m_narrow);
}

LengthMixture::Densities LengthMixture::densities() const
{
    const double total = m_total + 4.0; // one pair of each kind beforehand
    const auto gauss = [&](double pairs, double variance) {
        return (pairs + 1.0) / total * portable::exp(-1.5 * (kLog2Pi + portable::log(variance)));
    };
    Densities d;
    d.narrow = gauss(m_narrow, m_narrowVariance);
    d.narrowExponent = -0.5 / m_narrowVariance;
    if (m_broadVariance > 0.0) {
        d.broad = gauss(m_broad, m_broadVariance);
        d.broadExponent = -0.5 / m_broadVariance;
    }
    d.near = (m_near + 1.0) / total * portable::exp(-kLogNear);
    d.nearest = kNearest * m_narrowVariance;
    d.far = (std::max(m_total - right() - m_near, 0.0) + 1.0) / total * portable::exp(-m_logVolume);
    return d;
}

LengthMixture::Posterior LengthMixture::posteriorAt(const Densities& d, double square)
{
    const double length = std::sqrt(std::max(square, d.nearest));
    const double near = d.near / (length * length * length);
    Posterior posterior;
    posterior.narrow = d.narrow * portable::exp(d.narrowExponent * square);
    posterior.broad = d.broad > 0.0 ? d.broad * portable::exp(d.broadExponent * square) : 0.0;
    const double sum = posterior.narrow + posterior.broad + near + d.far;
    posterior.narrow /= sum;
    posterior.broad /= sum;
    posterior.near = near / sum;
    posterior.density = sum;
    return posterior;
}

double LengthMixture::step(bool likelihood)
{
    double logLikelihood = 0.0;
    double narrow = 0.0;
    double broad = 0.0;
    double narrowSquares = 0.0;
    double broadSquares = 0.0;
    double near = 0.0;
    const Densities d = densities();
    for (std::size_t bin = m_first; bin <= m_last; ++bin) {
        if (m_counts[bin] == 0) {
            continue;
        }
        const double square = bins().centre[bin];
        const auto count = static_cast<double>(m_counts[bin]);
        const Posterior posterior = posteriorAt(d, square);
        logLikelihood += likelihood ? count * portable::log(posterior.density) : 0.0;
        near += count * posterior.near;
        narrow += count * posterior.narrow;
        broad += count * posterior.broad;
        narrowSquares += count * posterior.narrow * square;
        broadSquares += count * posterior.broad * square;
    }
    m_narrow = narrow;
    m_broad = broad;
    m_near = near;
    // The parameters take their degrees of freedom from both in proportion.
    const double gone = m_parameters / std::max(narrow + broad, 1.0);
    const double left = std::max(3.0 - gone, 0.5);
    const double smallest = bins().edge[m_first] / 9.0;
    m_narrowVariance = std::max(narrowSquares / std::max(left * narrow, 1.0), smallest);
    if (m_broadVariance > 0.0) {
        m_broadVariance =
            std::max(broadSquares / std::max(left * broad, 1.0), 1.5 * m_narrowVariance);
    }
    return logLikelihood;
}

void LengthMixture::steps(int most)
{
    for (int i = 0; i < most; ++i) {
        const double before = m_narrowVariance;
        step(false);
        if (std::abs(m_narrowVariance - before) < 1e-4 * before) {
            break;
        }
    }
}

void LengthMixture::estimate()
{
    steps(m_broadVariance > 0.0 ? 8 : 4);
    if (m_broadVariance == 0.0) {
        tryBroad();
    }
}

void LengthMixture::tryBroad()
{
    double weight = 0.0;
    double squares = 0.0;
    double fourths = 0.0;
    const Densities d = densities();
    for (std::size_t bin = m_first; bin <= m_last; ++bin) {
        const double square = bins().centre[bin];
        if (m_counts[bin] == 0) {
            continue;
        }
        const double w = static_cast<double>(m_counts[bin]) * posteriorAt(d, square).narrow;
        weight += w;
        squares += w * square;
        fourths += w * square * square;
    }
    // Of a Gaussian in three dimensions the mean fourth power is 5/3 of the squared mean square.
    const double excess =
        fourths * weight / std::max(squares * squares, 1e-300) / (5.0 / 3.0) - 1.0;
    if (!(excess * std::sqrt(weight) > 3.5)) { // 3.5 standard deviations of the excess
        return;
    }
    const LengthMixture alone = *this;
    const double before = step(true);
    m_broadVariance = 9.0 * m_narrowVariance;
    m_broad = 0.1 * m_narrow;
    steps(40);
    const double after = step(true);
    if (after - before < portable::log(m_total) + 8.0) {
        *this = alone;
    }
}

bool LengthMixture::broadIsNoise() const
{
    return m_broadVariance > 0.0 && m_broadVariance <= kBroadest * m_narrowVariance;
}

double LengthMixture::fitWeight(const Posterior& posterior) const
{
    return posterior.narrow +
           (broadIsNoise() ? posterior.broad * m_narrowVariance / m_broadVariance : 0.0);
}

double LengthMixture::probability(const Posterior& posterior) const
{
    return posterior.narrow + (broadIsNoise() ? posterior.broad : 0.0);
}

double LengthMixture::probability(double square) const
{
    return probability(posteriorAt(densities(), square));
}

template <typename Weight>
void LengthMixture::interpolate(
    const std::vector<double>& squares, const Weight& weight, std::vector<double>& result) const
{
    // Linear in each bin between its edges.
    std::vector<double> level(kBins, 0.0);
    std::vector<double> slope(kBins, 0.0);
    const Densities d = densities();
    double lower = 0.0;
    for (std::size_t bin = m_first; bin <= m_last + 1; ++bin) {
        const double upper = weight(posteriorAt(d, bins().edge[bin]));
        if (bin > m_first) {
            const double width = bins().edge[bin] - bins().edge[bin - 1];
            slope[bin - 1] = (upper - lower) / width;
            level[bin - 1] = lower - slope[bin - 1] * bins().edge[bin - 1];
        }
        lower = upper;
    }
    result.resize(squares.size());
    for (std::size_t i = 0; i < squares.size(); ++i) {
        const std::size_t bin = binOf(squares[i]);
        result[i] = level[bin] + slope[bin] * squares[i];
    }
}

void LengthMixture::weigh(const std::vector<double>& squares, std::vector<double>& fitWeights) const
{
    interpolate(
        squares, [this](const Posterior& p) { return fitWeight(p); }, fitWeights);
}

void LengthMixture::weighRight(
    const std::vector<double>& squares, std::vector<double>& probabilities) const
{
    interpolate(
        squares, [this](const Posterior& p) { return probability(p); }, probabilities);
}

double LengthMixture::variance() const
{
    const double broad = broadIsNoise() ? m_broad : 0.0;
    return (m_narrow * m_narrowVariance + broad * m_broadVariance) /
           std::max(m_narrow + broad, 1e-300);
}

double LengthMixture::covarianceFactor() const
{
    double weights = 0.0;
    double squares = 0.0;
    double derivatives = 0.0;
    const Densities d = densities();
    for (std::size_t bin = m_first; bin <= m_last; ++bin) {
        if (m_counts[bin] == 0) {
            continue;
        }
        const auto count = static_cast<double>(m_counts[bin]);
        const double square = bins().centre[bin];
        const double weight = fitWeight(posteriorAt(d, square));
        const double lower = fitWeight(posteriorAt(d, bins().edge[bin]));
        const double upper = fitWeight(posteriorAt(d, bins().edge[bin + 1]));
        const double slope = (upper - lower) / (bins().edge[bin + 1] - bins().edge[bin]);
        weights += count * weight;
        squares += count * weight * weight * square / 3.0;
        derivatives += count * (weight + 2.0 / 3.0 * square * slope);
    }
    // The residuals are smaller than the errors by what the fit has taken.
    const double numbers = 3.0 * right();
    const double taken = numbers / std::max(numbers - m_parameters, 1.0);
    return squares * weights / std::max(derivatives * derivatives, 1e-300) * taken;
}

} // namespace lumo::similarity
