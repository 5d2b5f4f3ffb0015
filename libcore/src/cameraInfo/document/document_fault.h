// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/lumo_camera_db_xml.h"

#include <QString>

#include <optional>

namespace lumo::cameradb {

/// The first thing that keeps tables from being written as XML and read back,
/// with the record and the field, if there is any. Cameras that are not valid do not
/// count: they are not written.
[[nodiscard]] std::optional<QString> documentFault(
    const HeaderPairs& headerPairs, const CameraDBData& data);

} // namespace lumo::cameradb
