// SPDX-License-Identifier: Apache-2.0
#include "init/similarity/scene.h"

#include "init/similarity/portable_math.h"
#include "lumo/core/init/point_pairs.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace lumo::similarity {

namespace {

/// A flat cloud has a volume, too: wrong pairs leave its plane.
constexpr double kThinnest = 0.02;
/// Sizes are those between these quantiles, so that a few far points do not set them.
constexpr double kTail = 0.05;

/// Reorders the values.
double quantile(std::vector<double>& values, double share)
{
    const auto last = static_cast<double>(values.size() - 1);
    const auto position = static_cast<std::ptrdiff_t>(std::floor(share * last + 0.5));
    std::nth_element(values.begin(), values.begin() + position, values.end());
    return values[static_cast<std::size_t>(position)];
}

double rangeOf(std::vector<double>& values)
{
    return (quantile(values, 1.0 - kTail) - quantile(values, kTail)) / (1.0 - 2.0 * kTail);
}

/// Of at most this many pairs spread over all: medians and sizes need no more.
constexpr std::size_t kEnough = 512;

std::vector<double> columnOf(
    const std::vector<Eigen::Vector3d>& points, const std::vector<std::size_t>& indices,
    Eigen::Index axis)
{
    std::vector<double> column;
    const std::size_t step = std::max<std::size_t>(1, indices.size() / kEnough);
    column.reserve(indices.size() / step + 1);
    for (std::size_t i = 0; i < indices.size(); i += step) {
        column.push_back(points[indices[i]][axis]);
    }
    return column;
}

struct Frame
{
    Eigen::Vector3d centre;
    Eigen::Vector3d range;
    double largest = 0.0; ///< coordinate, in size
};

Frame frameOf(const std::vector<Eigen::Vector3d>& points, const std::vector<std::size_t>& indices)
{
    Frame frame;
    for (Eigen::Index axis = 0; axis < 3; ++axis) {
        std::vector<double> column = columnOf(points, indices, axis);
        frame.centre[axis] = quantile(column, 0.5);
        frame.range[axis] = rangeOf(column);
        for (const double value : column) {
            frame.largest = std::max(frame.largest, std::abs(value));
        }
    }
    return frame;
}

void addPrecisions(const PointPairs& pairs, const std::vector<std::size_t>& indices, Scene& scene)
{
    double logSum = 0.0;
    for (const std::size_t i : indices) {
        for (const double sigma : pairs.sigmas[i]) {
            logSum += portable::log(sigma);
        }
    }
    scene.givenSigma = portable::exp(logSum / (3.0 * static_cast<double>(indices.size())));
    for (const std::size_t i : indices) {
        const Eigen::Vector3d& sigma = pairs.sigmas[i];
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const double ratio = scene.givenSigma / sigma[static_cast<Eigen::Index>(axis)];
            scene.precision[axis].push_back(ratio * ratio);
        }
        scene.precisionByAxis =
            scene.precisionByAxis || sigma[0] != sigma[1] || sigma[0] != sigma[2];
    }
}

} // namespace

double Scene::meanPrecisionOf(std::size_t i) const
{
    return precision[0].empty()
               ? 1.0
               : 3.0 / (1.0 / precision[0][i] + 1.0 / precision[1][i] + 1.0 / precision[2][i]);
}

Scene makeScene(const PointPairs& pairs, const std::vector<std::size_t>& indices)
{
    const Frame frame1 = frameOf(pairs.points1, indices);
    const Frame frame2 = frameOf(pairs.points2, indices);
    Scene scene;
    scene.centre1 = frame1.centre;
    scene.centre2 = frame2.centre;
    const auto sizeOf = [](const Frame& frame) {
        const double size = frame.range.norm();
        return size > 0.0 ? size : std::max(frame.largest, 1e-300);
    };
    scene.unit1 = sizeOf(frame1);
    scene.unit2 = sizeOf(frame2);
    const Eigen::Vector3d range = frame1.range / scene.unit1;
    const double smallest = kThinnest * std::max(range.maxCoeff(), 1e-6);
    for (const double size : range) {
        scene.logVolume += portable::log(std::max(size, smallest));
    }
    const double rounding = std::max(frame1.largest / scene.unit1, frame2.largest / scene.unit2) *
                            std::numeric_limits<double>::epsilon();
    scene.smallestSquare = std::max(rounding * rounding, 1e-30);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const auto k = static_cast<Eigen::Index>(axis);
        scene.columns[axis].reserve(indices.size());
        scene.columns[3 + axis].reserve(indices.size());
        const double perUnit1 = 1.0 / scene.unit1;
        const double perUnit2 = 1.0 / scene.unit2;
        for (const std::size_t i : indices) {
            scene.columns[axis].push_back((pairs.points1[i][k] - scene.centre1[k]) * perUnit1);
            scene.columns[3 + axis].push_back((pairs.points2[i][k] - scene.centre2[k]) * perUnit2);
        }
    }
    if (!pairs.sigmas.empty()) {
        addPrecisions(pairs, indices, scene);
    }
    return scene;
}

Scene partOf(const Scene& scene, const std::vector<std::size_t>& indices)
{
    Scene part;
    part.precisionByAxis = scene.precisionByAxis;
    part.centre1 = scene.centre1;
    part.centre2 = scene.centre2;
    part.unit1 = scene.unit1;
    part.unit2 = scene.unit2;
    part.givenSigma = scene.givenSigma;
    part.logVolume = scene.logVolume;
    part.smallestSquare = scene.smallestSquare;
    const auto pick = [&](const std::vector<double>& from, std::vector<double>& to) {
        to.reserve(indices.size());
        for (const std::size_t i : indices) {
            to.push_back(from[i]);
        }
    };
    for (std::size_t c = 0; c < scene.columns.size(); ++c) {
        pick(scene.columns[c], part.columns[c]);
    }
    for (std::size_t axis = 0; axis < 3 && !scene.precision[0].empty(); ++axis) {
        pick(scene.precision[axis], part.precision[axis]);
    }
    return part;
}

std::vector<std::size_t> sampleOfSlices(std::size_t n, std::size_t count, std::mt19937& generator)
{
    std::vector<std::size_t> indices(std::min(n, count));
    if (n <= count) {
        std::iota(indices.begin(), indices.end(), std::size_t{0});
        return indices;
    }
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t first = i * n / count;
        const std::size_t last = (i + 1) * n / count;
        indices[i] = first + portable::below(static_cast<std::uint32_t>(last - first), generator);
    }
    return indices;
}

} // namespace lumo::similarity
