// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/services/find_camera_model.h"

#include "lumo/core/services/camera_model_service.h"
#include "lumo/core/services/core_services.h"

namespace lumo {

CameraData findCameraModel(const ExifInfo& exif)
{
    const CameraModelDb& db = serviceCamDB().cameraModelDb();
    CameraData camera;
    CameraModelFromDB model;
    if (db.findCameraModel(exif.exifId().first, exif.serialNumber, true, model, false)) {
        copyCameraModelToParams(model, model.params.source, camera, npos);
    }
    return camera;
}

} // namespace lumo
