// SPDX-License-Identifier: Apache-2.0
// CameraModelDb: finding camera models by identifier, name and serial number.
#include "cameraInfo/tables/camera_table.h"
#include "lumo/cameradata/camera_name.h"
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/exif_compatible.h"

#include <set>

namespace lumo {
namespace {

using cameratable::Table;

/// Whether the internal entry fits the requested body better than the user's: it has the
/// body's serial number, or it is generic where the user's belongs to another body.
bool internalPreferred(
    const CameraModelFromDB& internal, const CameraModelFromDB& user, const QString& serialNumber)
{
    return internal.serialNumber != user.serialNumber && user.serialNumber != serialNumber &&
           (internal.serialNumber == serialNumber ||
            (!user.serialNumber.isEmpty() && internal.serialNumber.isEmpty()));
}

/// Empty if there is none.
QString valueOf(const std::map<QString, QString>& mappings, const QString& exifId)
{
    const auto mapping = mappings.find(exifId);
    return mapping == mappings.end() ? QString() : mapping->second;
}

} // namespace

StoredCameraModel CameraModelDb::storedCameraModel(
    const QString& name, const QString& serialNumber, bool exactSerial, bool internalOnly) const
{
    if (name.isEmpty()) {
        return {};
    }
    const CameraModelFromDB* internal =
        cameratable::find(m_internal.cameras, name, serialNumber, exactSerial);
    const CameraModelFromDB* user =
        internalOnly ? nullptr : cameratable::find(m_user.cameras, name, serialNumber, exactSerial);
    if (user == nullptr ||
        (internal != nullptr && internalPreferred(*internal, *user, serialNumber))) {
        return internal != nullptr ? StoredCameraModel{internal, internal->params.source}
                                   : StoredCameraModel();
    }
    if (cameratable::find(m_internal.cameras, name, serialNumber, false) != nullptr) {
        return {user, CameraSource::EditedDatabase};
    }
    // Only a name that the internal tables lack can come from the metadata alone.
    const bool fromExif = user->params.source == CameraSource::Exif;
    return {user, fromExif ? CameraSource::Exif : CameraSource::UserDatabase};
}

StoredCameraModel CameraModelDb::storedCameraModel(
    const ExifID& exifId, const QString& serialNumber, bool internalOnly) const
{
    return storedCameraModel(
        exifId2cameraName(exifId, internalOnly), serialNumber, false, internalOnly);
}

bool CameraModelDb::findCameraModel(
    const QString& name, const QString& serialNumber, bool exactSerial, CameraModelFromDB& model,
    bool internalOnly) const
{
    const StoredCameraModel found =
        storedCameraModel(name, serialNumber, exactSerial, internalOnly);
    if (found) {
        model = *found.model;
        model.params.source = found.source;
    }
    return static_cast<bool>(found);
}

bool CameraModelDb::findCameraModel(
    const QString& name, CameraModelFromDB& model, bool internalOnly) const
{
    return findCameraModel(name, QString(), false, model, internalOnly);
}

bool CameraModelDb::findCameraModel(
    const ExifID& exifId, const QString& serialNumber, CameraModelFromDB& model,
    bool internalOnly) const
{
    return findCameraModel(
        exifId2cameraName(exifId, internalOnly), serialNumber, false, model, internalOnly);
}

bool CameraModelDb::containsCameraModel(
    const QString& name, const QString& serialNumber, bool inInternal, bool inUser) const
{
    const auto contains = [&](const Table& table) {
        return cameratable::findExact(table, name, serialNumber) != table.end();
    };
    return !name.isEmpty() &&
           ((inUser && contains(m_user.cameras)) || (inInternal && contains(m_internal.cameras)));
}

QString CameraModelDb::mappedName(const QString& exifId, bool internalOnly) const
{
    const QString own = internalOnly ? QString() : valueOf(m_user.mappings, exifId);
    return own.isEmpty() ? valueOf(m_internal.mappings, exifId) : own;
}

QString CameraModelDb::exifId2cameraName(const QString& exifId, bool internalOnly) const
{
    if (exifId.isEmpty()) {
        return {};
    }
    const auto known = [this, internalOnly](const QString& name) {
        return (!internalOnly && m_user.cameras.contains(name)) ||
               m_internal.cameras.contains(name);
    };
    // A mapping may lead to a model of another database; it then has no effect.
    QString mapped = mappedName(exifId, internalOnly);
    if (!mapped.isEmpty() && known(mapped)) {
        return mapped;
    }
    return known(exifId) ? exifId : QString();
}

QString CameraModelDb::exifId2cameraName(const ExifID& exifId, bool internalOnly) const
{
    if (!validCameraName(exifId.first)) {
        return {};
    }
    QString name = exifId2cameraName(exifId.first, internalOnly);
    if (!name.isEmpty() || !validCameraName(exifId.second)) {
        return name;
    }
    return exifId2cameraName(exifId.second, internalOnly);
}

void CameraModelDb::cameraNames(
    const ExifInfo& exif, std::vector<std::pair<QString, QString>>& names) const
{
    std::set<std::pair<QString, QString>> found;
    const auto collect = [&exif, &found](const Table& table, const Table* overriding) {
        for (const auto& [name, model] : table) {
            const bool overridden =
                overriding != nullptr &&
                cameratable::findExact(*overriding, name, model.serialNumber) != overriding->end();
            if (!overridden && (exif.empty() || exif::compatible(exif, model, npos))) {
                found.emplace(name, model.serialNumber);
            }
        }
    };
    // A user's entry that does not fit the image still hides the internal one it replaces.
    collect(m_internal.cameras, &m_user.cameras);
    collect(m_user.cameras, nullptr);
    names.assign(found.begin(), found.end());
}

CameraModelFromDB CameraModelDb::convert2CameraModel(
    const CameraData& camera, const QString& exifId, std::size_t& bandIndex) const
{
    CameraModelFromDB model;
    if (findCameraModel(camera.params.name, camera.serialNumber, true, model, false)) {
        const std::size_t index = model.bandConfigIndexByNames(camera.bands);
        if (index != npos && model.setBands(camera.bands, index)) {
            bandIndex = index;
            model.params = camera.params;
            return model;
        }
    }
    bandIndex = 0;
    return {camera, exifId};
}

} // namespace lumo
