// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/image_mode.h"

#include <cstddef>

namespace lumo {

struct PictureSize
{
    std::size_t width = 0;
    std::size_t height = 0;

    bool operator==(const PictureSize&) const = default;
};

/// How a picture of one size came from a picture of another.
struct SizeChange
{
    /// Native if the sizes are the same; Unknown if neither scaling nor cropping
    /// explains the change, or both do. Never Binned.
    ImageMode mode = ImageMode::Unknown;
    double scale = 1.0;      ///< new pixels are this many old ones wide
    bool turned = false;     ///< one is portrait, the other landscape
    bool keepsASide = false; ///< of a crop: it is as wide or as high as before
};

/// Judges by the sizes alone. Proportions that agree within 1 % or within a pixel mean
/// scaling: a crop has equal proportions only by chance. In pictures narrower than 50
/// pixels one pixel is more than 2 %, so proportions prove nothing; a change that fits
/// scaling is then Unknown.
/// \param from  \param to  neither with a side of 0
[[nodiscard]] SizeChange compareSizes(PictureSize from, PictureSize to);

} // namespace lumo
