// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace lumo {

struct CameraModelFromDB;

namespace cameradb {

/// Whether a database may have the camera: it is valid, and so is each of its bands.
/// \param[out] error  the first reason if not, else untouched
[[nodiscard]] bool usable(const CameraModelFromDB& camera, QString& error);

} // namespace cameradb
} // namespace lumo
