// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/lumo_camera_db_xml.h"

namespace lumo::cameradb {

/// The first thing that keeps tables from being written as XML and read back,
/// with the record and the field; empty if there is none. Cameras that are not
/// valid do not count: they are not written.
[[nodiscard]] QString documentFault(const HeaderPairs& headerPairs, const CameraDBData& data);

} // namespace lumo::cameradb
