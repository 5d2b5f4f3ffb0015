// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/identify/without_debug_lines.h"

#include "lumo/cameradata/input_image.h"
#include "lumo/core/specificSensor/sequoia.h"
#include "lumo/exif/sequoia.h"

namespace lumo {

ExifInfo withoutDebugLines(const ExifInfo& exif)
{
    InputImage image(QString(), exif);
    if (!exif::sequoia::isSequoia(exif) || image.spectralKind() != SpectralKind::Multispectral) {
        return exif;
    }
    sequoia::fixImageDimensionsToRemoveDebugLines(image);
    ExifInfo result = image.exif();
    if (result.fileHeight == sequoia::kRawHeight) {
        result.fileHeight = sequoia::kUsableHeight;
    }
    return result;
}

} // namespace lumo
