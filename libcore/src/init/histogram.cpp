// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/init/histogram.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <stdexcept>

namespace lumo {

Histogram::Histogram() = default;

Histogram::Histogram(double a, double b, std::size_t binCount)
{
    reset(a, b, binCount);
}

void Histogram::reset(double a, double b, std::size_t binCount)
{
    const double low = std::min(a, b);
    const double high = std::max(a, b);
    if (!std::isfinite(a) || !std::isfinite(b) || !std::isfinite(high - low)) {
        throw std::invalid_argument("Histogram::reset: the range is not finite");
    }
    const double bins = static_cast<double>(binCount);
    const double width = std::max(high - low, std::numeric_limits<double>::epsilon());
    const double offset = -(bins * low / width);
    if (!std::isfinite(offset)) {
        throw std::invalid_argument("Histogram::reset: the range is too far from 0");
    }
    m_bins.assign(binCount, 0);
    m_min = low;
    m_max = high;
    m_offset = offset;
    m_scale = bins / width;
}

void Histogram::throwNoBins()
{
    throw std::logic_error("Histogram::addDatum: there are no bins");
}

bool Histogram::addHisto(const Histogram& other)
{
    if (other.size() != size()) {
        return false;
    }
    std::transform(
        m_bins.begin(), m_bins.end(), other.m_bins.begin(), m_bins.begin(), std::plus<>());
    return true;
}

void Histogram::clear()
{
    std::fill(m_bins.begin(), m_bins.end(), 0);
}

double Histogram::value(std::size_t i) const
{
    return m_min + static_cast<double>(i) / static_cast<double>(size()) * (m_max - m_min);
}

std::pair<double, double> Histogram::bounds(std::size_t i) const
{
    return {value(i), value(i + 1)};
}

std::size_t Histogram::count() const
{
    return count(0, size());
}

std::size_t Histogram::count(std::size_t first, std::size_t last) const
{
    last = std::min(last, size());
    if (first >= last) {
        return 0;
    }
    const auto begin = m_bins.begin();
    return std::accumulate(
        begin + static_cast<std::ptrdiff_t>(first), begin + static_cast<std::ptrdiff_t>(last),
        std::uint64_t{0});
}

std::size_t Histogram::binMax() const
{
    return m_bins.empty() ? 0 : m_bins[binMaxIndex()];
}

std::size_t Histogram::binMaxIndex() const
{
    return static_cast<std::size_t>(
        std::max_element(m_bins.begin(), m_bins.end()) - m_bins.begin());
}

std::pair<std::size_t, std::size_t> Histogram::range(double a, double b) const
{
    if (m_bins.empty()) {
        return {0, 0};
    }
    const auto [low, high] = std::minmax(a, b);
    std::size_t first = 0;
    while (first < size() && value(first) < low) {
        ++first;
    }
    std::size_t last = size() - 1;
    while (last > 0 && value(last) > high) {
        --last;
    }
    return {first, last + 1};
}

std::pair<std::size_t, std::size_t> Histogram::cutoff(double fraction) const
{
    const double share = fraction > 0.0 ? std::min(fraction, 1.0) : 0.0; // 0 for NaN
    const auto k = static_cast<std::size_t>(static_cast<double>(count()) * share);
    std::size_t first = 0;
    for (std::size_t sum = 0; first < size() && sum < k; ++first) {
        sum += m_bins[first];
    }
    std::size_t second = size();
    for (std::size_t sum = 0; second > 1 && sum < k;) {
        sum += m_bins[--second];
    }
    return {first, second};
}

} // namespace lumo
