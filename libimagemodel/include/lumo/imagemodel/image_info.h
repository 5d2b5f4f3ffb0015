// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/imagemodel/data_type.h"

#include <cstddef>

namespace lumo {

/// Size and pixel format of an image, known without reading its pixels.
struct ImageInfo
{
    std::size_t width = 0;  ///< columns
    std::size_t height = 0; ///< rows
    std::size_t bandCount = 0;
    DataType dataType = DataType::Unknown;

    bool operator==(const ImageInfo&) const = default;
};

} // namespace lumo
