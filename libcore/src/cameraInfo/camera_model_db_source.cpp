// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/exif/camera_from_exif.h"

#include <optional>

namespace lumo {
namespace {

/// A user entry that only repeats the metadata counts as metadata.
CameraSource sourceOf(const CameraModelFromDB& model, bool fromExif)
{
    return fromExif && model.params.source == CameraSource::UserDatabase ? CameraSource::Exif
                                                                         : model.params.source;
}

/// The source by the camera's own name; nothing if its entries do not hold it.
std::optional<CameraSource> sourceByName(
    const CameraModelDb& db, const CameraData& camera, bool fromExif)
{
    const QString& name = camera.params.name;
    CameraModelFromDB model;
    if (camera.incomplete() || !db.findCameraModel(name, camera.serialNumber, true, model, false)) {
        return std::nullopt;
    }
    if (model.contains(camera, true)) {
        return sourceOf(model, fromExif);
    }
    if (!db.findCameraModel(name, camera.serialNumber, false, model, true)) {
        return std::nullopt;
    }
    if (model.serialNumber != camera.serialNumber) {
        return CameraSource::EditedDatabase;
    }
    return model.contains(camera, true) ? std::optional(model.params.source) : std::nullopt;
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
    const bool fromExif = sameAsExif(camera, exif);
    if (const auto source = sourceByName(*this, camera, fromExif)) {
        return *source;
    }
    if (exif.empty()) {
        return CameraSource::Custom;
    }
    CameraModelFromDB model;
    if (findCameraModel(
            exifId2cameraName(exif.exifId(), false), exif.serialNumber, false, model, false) &&
        model.contains(camera, true)) {
        return sourceOf(model, fromExif);
    }
    return fromExif ? CameraSource::Exif : CameraSource::Custom;
}

} // namespace lumo
