// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/image_mode.h"

namespace lumo {

QString toString(ImageMode mode)
{
    switch (mode) {
    case ImageMode::Native:
        return QStringLiteral("native");
    case ImageMode::Resized:
        return QStringLiteral("resized");
    case ImageMode::Cropped:
        return QStringLiteral("cropped");
    case ImageMode::Binned:
        return QStringLiteral("binned");
    case ImageMode::Unknown:
        break;
    }
    return QStringLiteral("unknown");
}

} // namespace lumo
