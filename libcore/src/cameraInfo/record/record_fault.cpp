// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/record/record_fault.h"

#include "lumo/core/cameraInfo/camera_model_from_db.h"

#include <algorithm>

namespace lumo {

bool cameradb::usable(const CameraModelFromDB& camera, QString& error)
{
    return camera.valid(error, npos) &&
           std::all_of(
               camera.bandConfigs.begin(), camera.bandConfigs.end(),
               [&error](const bands_t& bands) { return bands.valid(error, true, true, false); });
}

} // namespace lumo
