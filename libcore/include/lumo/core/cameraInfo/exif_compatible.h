// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <cstddef>

namespace lumo {

struct CameraModelFromDB;
struct ExifInfo;

namespace exif {

/// Whether a model may serve an image: the image size agrees in either
/// orientation and some band configuration (only `bandIndex`, unless that is
/// npos) has as many bands as the image, with or without garbage bands. True
/// for a `bandIndex` that is out of range otherwise.
[[nodiscard]] LUMO_CORE_EXPORT bool compatible(
    const ExifInfo& exif, const CameraModelFromDB& model, std::size_t bandIndex);

} // namespace exif
} // namespace lumo
