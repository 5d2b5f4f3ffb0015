// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/export.h"
#include "lumo/core/services/service.h"

namespace lumo {

/// Owns the process's camera model database. The database is empty until the
/// application sets its settings (CameraModelDb::reset) and loads it.
///
/// The service may be obtained on any thread. The database has no lock: only one
/// thread at a time may use it.
class LUMO_CORE_EXPORT CameraModelService : public Service
{
public:
    CameraModelService();
    ~CameraModelService() override;

    [[nodiscard]] CameraModelDb& cameraModelDb() { return m_cameraModelDb; }
    [[nodiscard]] const CameraModelDb& cameraModelDb() const { return m_cameraModelDb; }

private:
    CameraModelDb m_cameraModelDb;
};

} // namespace lumo
