// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/camera_data.h"

namespace lumo {

void CameraData::setBands(const bands_t& newBands, bool fixed)
{
    bands = newBands;
    fixedBands = fixed;
}

bool CameraData::equal(const CameraData& other, bool withVignetting) const
{
    return params.equal(other.params, withVignetting) && bands == other.bands;
}

bool CameraData::incomplete() const
{
    return params.name.isEmpty() || params.imageWidth == 0 || params.imageHeight == 0 ||
           params.pixelSize == 0.0 ||
           (params.lensType == LensType::Perspective && params.perspective.focalLengthMm == 0.0);
}

} // namespace lumo
