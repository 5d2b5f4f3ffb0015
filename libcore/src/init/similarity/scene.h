// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Eigen/Core>

#include <array>
#include <cstdint>
#include <random>
#include <vector>

namespace lumo {
struct PointPairs;
}

namespace lumo::similarity {

/// The pairs that are fitted, in columns, without units: both sets relative to their
/// medians and divided by their sizes.
struct Scene
{
    /// x, y, z of set 1, then of set 2.
    std::array<std::vector<double>, 6> columns;
    /// Inverse squares of the given standard deviations by axis, with a geometric mean of 1;
    /// empty if none were given.
    std::array<std::vector<double>, 3> precision;
    bool precisionByAxis = false; ///< they differ between the axes of a pair

    Eigen::Vector3d centre1, centre2; ///< medians, in the caller's units
    double unit1 = 1.0, unit2 = 1.0;  ///< sizes, in the caller's units
    double givenSigma = 1.0;          ///< geometric mean of the given ones, unit 1
    /// Logarithm of the volume that wrong pairs spread over.
    double logVolume = 0.0;
    /// Squared lengths below it are rounding.
    double smallestSquare = 0.0;

    [[nodiscard]] std::size_t size() const { return columns[0].size(); }
    [[nodiscard]] Eigen::Vector3d point(std::size_t set, std::size_t i) const
    {
        return {columns[3 * set][i], columns[3 * set + 1][i], columns[3 * set + 2][i]};
    }
    /// Inverse variance of a pair on an axis, relative.
    [[nodiscard]] double precisionOf(std::size_t axis, std::size_t i) const
    {
        return precision[0].empty() ? 1.0 : precision[axis][i];
    }
    /// One precision for all axes of a pair: the inverse of its mean variance.
    [[nodiscard]] double meanPrecisionOf(std::size_t i) const;
};

/// \param indices  the pairs that take part; not empty
[[nodiscard]] Scene makeScene(const PointPairs& pairs, const std::vector<std::size_t>& indices);

/// The pairs `indices` of a scene, in the same units.
[[nodiscard]] Scene partOf(const Scene& scene, const std::vector<std::size_t>& indices);

/// One index from each of `count` slices of 0 .. n - 1; all if there are no more.
[[nodiscard]] std::vector<std::size_t> sampleOfSlices(
    std::size_t n, std::size_t count, std::mt19937& generator);

} // namespace lumo::similarity
