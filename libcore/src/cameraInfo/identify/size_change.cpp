// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/identify/size_change.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace lumo {
namespace {

/// Scaled sides are rounded to whole pixels or to small multiples of pixels.
constexpr double kSameProportions = 0.01;
/// At 50 pixels one pixel is 2 %: shorter sides fit almost any proportions.
constexpr std::size_t kTellingSide = 50;

bool isPortrait(PictureSize size)
{
    return size.height > size.width;
}

/// Whether sides that were rounded, or cut by a pixel, can come from one scale.
bool scaledWithinAPixel(PictureSize from, PictureSize to)
{
    const auto bound = [](std::size_t side, double error, std::size_t of) {
        return (static_cast<double>(side) + error) / static_cast<double>(of);
    };
    return bound(to.width, 1, from.width) >= bound(to.height, -1, from.height) &&
           bound(to.height, 1, from.height) >= bound(to.width, -1, from.width);
}

bool sameProportions(PictureSize from, PictureSize to)
{
    const double ratio = static_cast<double>(from.width) * static_cast<double>(to.height) /
                         (static_cast<double>(from.height) * static_cast<double>(to.width));
    return std::abs(ratio - 1.0) <= kSameProportions;
}

} // namespace

SizeChange compareSizes(PictureSize from, PictureSize to)
{
    SizeChange change;
    change.turned =
        from.width != from.height && to.width != to.height && isPortrait(from) != isPortrait(to);
    if (change.turned) {
        std::swap(from.width, from.height);
    }
    if (from == to) {
        change.mode = ImageMode::Native;
        return change;
    }
    change.keepsASide = from.width == to.width || from.height == to.height;
    const bool fitsInside = to.width <= from.width && to.height <= from.height;
    const bool scaled = scaledWithinAPixel(from, to) || sameProportions(from, to);
    if (scaled && !change.keepsASide) {
        if (std::min(to.width, to.height) >= kTellingSide) {
            change.mode = ImageMode::Resized;
            change.scale = from.width >= from.height
                               ? static_cast<double>(from.width) / static_cast<double>(to.width)
                               : static_cast<double>(from.height) / static_cast<double>(to.height);
        }
    } else if (fitsInside) {
        change.mode = ImageMode::Cropped;
    }
    return change;
}

} // namespace lumo
