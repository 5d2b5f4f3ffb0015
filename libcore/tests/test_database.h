// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/camera_model_db.h"

#include <vector>

namespace lumo {

/// A store whose internal tables hold these models.
inline CameraModelDb databaseWith(const std::vector<CameraModelFromDB>& models)
{
    cameradb::CameraDBData data;
    for (const CameraModelFromDB& model : models) {
        data.cameras.emplace(model.params.name, model);
    }
    CameraModelDb db;
    db.setInternalData(data);
    return db;
}

} // namespace lumo
