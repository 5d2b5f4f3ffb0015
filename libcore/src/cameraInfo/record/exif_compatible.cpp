// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/exif_compatible.h"

#include "cameraInfo/record/band_count.h"
#include "lumo/cameradata/exif_info.h"
#include "lumo/core/cameraInfo/camera_model_from_db.h"

#include <algorithm>

namespace lumo {

bool exif::compatible(const ExifInfo& exif, const CameraModelFromDB& model, std::size_t bandIndex)
{
    if (!model.params.equalImageSize(exif.imageWidth, exif.imageHeight)) {
        return false;
    }
    const std::vector<bands_t>& configs = model.bandConfigs;
    const auto fits = [&exif](const bands_t& bands) {
        return hasBandCount(bands, exif.bandCount());
    };
    if (bandIndex != npos) {
        return bandIndex >= configs.size() || fits(configs[bandIndex]);
    }
    return std::any_of(configs.begin(), configs.end(), fits);
}

} // namespace lumo
