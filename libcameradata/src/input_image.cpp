// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/input_image.h"

#include <utility>

namespace lumo {

InputImage::InputImage(QString path, const ExifInfo& exif)
    : m_path(std::move(path))
    , m_exif(exif)
    , m_spectralKind(
          exif.bands.empty() || exif.bands.sameNames(band::makeRGBBands())
              ? SpectralKind::Rgb
              : SpectralKind::Multispectral)
{}

} // namespace lumo
