// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/camera_model_from_db.h"

namespace lumo {

/// A valid perspective model of 4000 x 3000 pixels of 1.5 um with RGB bands.
inline CameraModelFromDB testModel(const QString& name, const QString& serialNumber = {})
{
    CameraModelFromDB model;
    model.serialNumber = serialNumber;
    model.params.name = name;
    model.params.setImageSize(4000, 3000);
    model.params.pixelSize = 0.0015;
    model.params.setPrincipalPointPixel({2000, 1500});
    model.params.perspective.focalLengthMm = 5.0;
    model.params.source = CameraSource::InternalDatabase;
    return model;
}

} // namespace lumo
