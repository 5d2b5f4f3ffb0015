// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/export.h"
#include "lumo/core/services/service.h"

namespace lumo {

/// Holds the process's camera model database, which is empty until the
/// application gives it settings (CameraModelDb::reset) and loads it.
///
/// The service may be asked for from any thread; the database has no lock and is
/// used by one thread at a time.
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
