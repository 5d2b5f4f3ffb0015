// SPDX-License-Identifier: Apache-2.0
// CameraModelDb: changing the user's camera models and mappings.
#include "cameraInfo/document/user_file.h"
#include "cameraInfo/tables/camera_table.h"
#include "lumo/core/cameraInfo/camera_model_db.h"

namespace lumo {
namespace {

using cameratable::Table;

/// Makes `model` the user's entry under its name and serial number.
/// \returns the entry, and whether anything but its source changed
std::pair<CameraModelFromDB*, bool> storeUserEntry(Table& table, const CameraModelFromDB& model)
{
    const auto entry = cameratable::findExact(table, model.params.name, model.serialNumber);
    if (entry == table.end()) {
        return {&table.emplace(model.params.name, model)->second, true};
    }
    CameraModelFromDB& held = entry->second;
    // equal() ignores the source, so a change of the source alone is copied here.
    if (held.equal(model)) {
        const bool changed = held.params.source != model.params.source;
        held.params.source = model.params.source;
        return {&held, changed};
    }
    held = model;
    return {&held, true};
}

/// Sets the source of a user entry, which depends on whether it overrides an internal
/// one.
/// \returns whether the source changed
bool setUserSource(CameraModelFromDB& entry, bool overrides)
{
    const CameraSource before = entry.params.source;
    if (overrides) {
        entry.params.source = CameraSource::EditedDatabase;
    } else if (before != CameraSource::Exif) {
        entry.params.source = CameraSource::UserDatabase;
    }
    return entry.params.source != before;
}

} // namespace

bool CameraModelDb::setCameraModel(const CameraModelFromDB& model, bool save)
{
    if (!editingAllowed() || !model.valid(npos, true)) {
        return false;
    }
    const QString& name = model.params.name;
    const auto internal = cameratable::findExact(m_internal.cameras, name, model.serialNumber);
    bool changed = false;
    if (internal != m_internal.cameras.end() && internal->second.equal(model)) {
        // A user entry equal to the internal one would hide later corrections of that.
        const auto own = cameratable::findExact(m_user.cameras, name, model.serialNumber);
        if (own == m_user.cameras.end()) {
            return false;
        }
        m_user.cameras.erase(own);
        changed = true;
    } else {
        const auto [entry, stored] = storeUserEntry(m_user.cameras, model);
        const bool sourceChanged = setUserSource(*entry, m_internal.cameras.contains(name));
        changed = stored || sourceChanged;
    }
    return save && changed ? saveUserDb() : changed;
}

bool CameraModelDb::addCamera(const CameraData& camera, bool save)
{
    if (!editingAllowed()) {
        return false;
    }
    CameraModelFromDB model;
    if (findCameraModel(camera.params.name, camera.serialNumber, true, model, false)) {
        model.addBands(camera.bands);
    } else {
        model = CameraModelFromDB(camera, QString());
    }
    return setCameraModel(model, save);
}

bool CameraModelDb::removeCameraModel(const QString& name, const QString& serialNumber, bool save)
{
    if (!editingAllowed() || name.isEmpty()) {
        return false;
    }
    const auto own = cameratable::findExact(m_user.cameras, name, serialNumber);
    if (own == m_user.cameras.end()) {
        return false;
    }
    // The name and number may be texts of what is removed here.
    const QString removed = name;
    const bool shipped = containsCameraModel(name, serialNumber, true, false);
    m_user.cameras.erase(own);
    // Mappings to a name without a model would lead nowhere.
    if (!shipped) {
        std::erase_if(
            m_user.mappings, [&removed](const auto& mapping) { return mapping.second == removed; });
    }
    return !save || saveUserDb();
}

bool CameraModelDb::setMapping(const QString& exifId, const QString& cameraName, bool save)
{
    if (!editingAllowed() || exifId.isEmpty() || exifId == QLatin1String("none")) {
        return false;
    }
    const auto internal = m_internal.mappings.find(exifId);
    const bool internalHolds =
        internal != m_internal.mappings.end() && internal->second == cameraName;
    bool changed = false;
    if (exifId == cameraName || internalHolds) {
        changed = m_user.mappings.erase(exifId) > 0;
    } else if (mappedName(exifId, false) != cameraName) {
        m_user.mappings.insert_or_assign(exifId, cameraName);
        changed = true;
    }
    return !save || !changed || saveUserDb();
}

bool CameraModelDb::saveUserDb()
{
    QString logged;
    return cameradb::writeUserFile(m_settings, m_user, logged);
}

} // namespace lumo
