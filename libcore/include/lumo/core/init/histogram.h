// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

namespace lumo {

/// Counts numbers in bins of equal width over a fixed range. What lies outside
/// the range counts in the first or last bin.
///
/// A value; const calls may run in parallel. Bin i of n holds
/// [min + i / n (max - min), min + (i + 1) / n (max - min)), up to the rounding
/// of v * scale + offset.
class LUMO_CORE_EXPORT Histogram
{
public:
    /// What is below it is a mark for missing data and is not counted.
    static constexpr double kNoData = -9999.999;

    /// A histogram without bins: to be reset() before anything is counted.
    Histogram();
    /// As reset().
    Histogram(double a, double b, std::size_t binCount);

    /// Empty bins over the range between a and b, in either order. A range
    /// without width is as wide as the machine epsilon.
    /// \throws std::invalid_argument if an end or the width is not finite; the
    ///         value is untouched then
    void reset(double a, double b, std::size_t binCount);

    /// Counts `value`. NaN and what is below kNoData is ignored.
    /// \throws std::logic_error if there are no bins
    void addDatum(double value) { _addDatum(value); }
    /// Adds the counts of the other bin by bin; the ranges are not compared.
    /// \returns false, and changes nothing, if the numbers of bins differ
    bool addHisto(const Histogram& other);
    /// All counts 0; the range stays.
    void clear();

    /// Count of bin i < size(), unchecked.
    [[nodiscard]] std::size_t operator[](std::size_t i) const { return m_bins[i]; }
    /// How many bins there are.
    [[nodiscard]] std::size_t size() const { return m_bins.size(); }
    /// Whether there is more than one bin.
    [[nodiscard]] bool valid() const { return m_bins.size() > 1; }
    [[nodiscard]] double min() const { return m_min; }
    [[nodiscard]] double max() const { return m_max; }
    /// Lower edge of bin i; i = size() gives the upper end. NaN without bins.
    [[nodiscard]] double value(std::size_t i) const;
    /// (value(i), value(i + 1)).
    [[nodiscard]] std::pair<double, double> bounds(std::size_t i) const;

    /// All that was counted.
    [[nodiscard]] std::size_t count() const;
    /// In the bins first to last - 1; 0 if first >= last. Bins beyond the last
    /// are empty.
    [[nodiscard]] std::size_t count(std::size_t first, std::size_t last) const;
    /// The largest count; 0 without bins.
    [[nodiscard]] std::size_t binMax() const;
    /// The first bin of the largest count; 0 without bins.
    [[nodiscard]] std::size_t binMaxIndex() const;

    /// The bins of an interval, given by its ends in either order: the first
    /// bin whose lower edge is not below the smaller end (size() if there is
    /// none), and one past the last bin, or bin 0, whose lower edge is not
    /// above the larger end. (0, 0) without bins.
    [[nodiscard]] std::pair<std::size_t, std::size_t> range(double a, double b) const;
    /// Where the tails end: with k = count() * fraction, truncated, the bins
    /// below `first` hold at least k at the lower end, and those from `second`
    /// up at least k at the upper end (as far as they do without bin 0, which
    /// is never in the upper tail). No more bins than that; for k = 0 none.
    /// A negative or NaN fraction counts as 0, one above 1 as 1.
    [[nodiscard]] std::pair<std::size_t, std::size_t> cutoff(double fraction) const;

protected:
    /// As addDatum(). Inline: the call would cost more than the counting.
    /// \returns the bin that was counted in; the largest size_t if ignored
    // NOLINTNEXTLINE(readability-identifier-naming)
    std::size_t _addDatum(double value)
    {
        if (!(value >= kNoData)) {
            return std::numeric_limits<std::size_t>::max();
        }
        if (m_bins.empty()) {
            throwNoBins();
        }
        const double position = value * m_scale + m_offset;
        // Signed: a conversion between a double and an unsigned number takes a branch.
        const auto last = static_cast<std::ptrdiff_t>(m_bins.size()) - 1;
        std::size_t bin = 0;
        if (position > 0.0) {
            // Compared as a number: what is too large for an integer is not converted.
            const bool inside = position < static_cast<double>(last);
            bin = static_cast<std::size_t>(inside ? static_cast<std::ptrdiff_t>(position) : last);
        }
        ++m_bins[bin];
        return bin;
    }

private:
    [[noreturn]] static void throwNoBins();

    double m_min = 0.0;
    double m_max = 0.0;
    double m_offset = 0.0;
    double m_scale = 0.0;
    std::vector<std::size_t> m_bins;
};

} // namespace lumo
