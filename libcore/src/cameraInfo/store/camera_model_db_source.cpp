// SPDX-License-Identifier: Apache-2.0
// CameraModelDb: where the parameters of a camera come from.
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/exif/camera_from_exif.h"

#include <optional>

namespace lumo {
namespace {

/// A user entry that only repeats the metadata counts as metadata.
CameraSource sourceOf(const StoredCameraModel& stored, bool fromExif)
{
    return fromExif && stored.source == CameraSource::UserDatabase ? CameraSource::Exif
                                                                   : stored.source;
}

/// The source by the camera's own name; nothing if no entry of this name has the
/// camera's values.
std::optional<CameraSource> sourceByName(
    const CameraModelDb& db, const CameraData& camera, bool fromExif)
{
    const QString& name = camera.params.name;
    if (camera.incomplete()) {
        return std::nullopt;
    }
    const StoredCameraModel stored = db.storedCameraModel(name, camera.serialNumber, true, false);
    if (!stored) {
        return std::nullopt;
    }
    if (stored.model->contains(camera, true)) {
        return sourceOf(stored, fromExif);
    }
    const StoredCameraModel internal = db.storedCameraModel(name, camera.serialNumber, false, true);
    if (!internal) {
        return std::nullopt;
    }
    if (internal.model->serialNumber != camera.serialNumber) {
        return CameraSource::EditedDatabase;
    }
    return internal.model->contains(camera, true) ? std::optional(internal.source) : std::nullopt;
}

bool sameAsExif(const CameraData& camera, const ExifInfo& exif)
{
    CameraData built;
    QString unused;
    return !exif.empty() && exif::getCamera(exif, built, nullptr, unused) &&
           camera.equal(built, false);
}

} // namespace

CameraSource CameraModelDb::calcCameraSource(const CameraData& camera, const ExifInfo& exif) const
{
    // The name decides first: two models may have equal values.
    const bool fromExif = sameAsExif(camera, exif);
    if (const auto source = sourceByName(*this, camera, fromExif)) {
        return *source;
    }
    if (exif.empty()) {
        return CameraSource::Custom;
    }
    const StoredCameraModel stored = storedCameraModel(exif.exifId(), exif.serialNumber, false);
    if (stored && stored.model->contains(camera, true)) {
        return sourceOf(stored, fromExif);
    }
    return fromExif ? CameraSource::Exif : CameraSource::Custom;
}

} // namespace lumo
