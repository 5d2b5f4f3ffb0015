// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/camera_data.h"
#include "lumo/cameradata/exif_info.h"
#include "lumo/core/cameraInfo/camera_db_data.h"
#include "lumo/core/cameraInfo/camera_db_settings.h"
#include "lumo/core/export.h"

#include <QString>

#include <cstddef>
#include <utility>
#include <vector>

namespace lumo {

struct rig_filter_t;

/// A camera model where the database holds it.
struct StoredCameraModel
{
    const CameraModelFromDB* model = nullptr; ///< null if none was found
    /// Where it came from. The model's own params.source is as it is stored.
    CameraSource source = CameraSource::Custom;

    explicit operator bool() const { return model != nullptr; }
};

/// The camera model database in memory: the internal (shipped) tables and the
/// user's own. Where both hold an entry under one key the user's wins, but for
/// the rule on serial numbers of findCameraModel.
///
/// A value; there is no lock, so one store is used by one thread at a time.
/// Operations report failure as false or an empty name; none throws.
class LUMO_CORE_EXPORT CameraModelDb
{
public:
    CameraModelDb() = default;
    explicit CameraModelDb(const CameraDbSettings& settings);

    [[nodiscard]] const CameraDbSettings& settings() const { return m_settings; }
    /// Empties both databases and takes the new settings.
    void reset(const CameraDbSettings& settings);
    /// Empties both databases.
    void clear();

    // What the loaders and writers of database files use.

    [[nodiscard]] const cameradb::CameraDBData& internalData() const { return m_internal; }
    [[nodiscard]] const cameradb::CameraDBData& userData() const { return m_user; }
    void setInternalData(cameradb::CameraDBData data);
    /// \param version  format version of the document that the tables come from
    /// \returns false, with nothing changed, if the user database is disabled
    [[nodiscard]] bool setUserData(cameradb::CameraDBData data, std::size_t version);
    /// The current version after construction and after the user tables were cleared.
    [[nodiscard]] std::size_t userDbVersion() const { return m_userVersion; }

    // State of the user database

    [[nodiscard]] bool enabledUserDB() const { return m_userEnabled; }
    [[nodiscard]] bool loadingUserDBAllowed() const { return m_userEnabled; }
    /// Disabling also empties the user tables.
    void setUserDBStatus(bool enabled);
    [[nodiscard]] bool readOnlyUserDB() const { return m_userReadOnly; }
    void setUserDBReadOnly(bool readOnly) { m_userReadOnly = readOnly; }
    /// The user database is enabled and not read-only.
    [[nodiscard]] bool editingAllowed() const { return m_userEnabled && !m_userReadOnly; }
    /// No cameras and no rigs; mappings are not counted.
    [[nodiscard]] bool emptyInternalDB() const;
    [[nodiscard]] bool emptyUserDB() const;
    [[nodiscard]] bool emptyDB() const;

    // Finding camera models. With `internalOnly` the user tables are not asked.

    /// The model of this name for this body: the entry with the serial number,
    /// else, unless `exactSerial`, the generic one (no serial number), else the
    /// first. A user's entry is preferred, unless only the internal one fits the
    /// body better.
    /// \param[out] model  its params.source says where it came from; untouched
    ///     if nothing is found
    [[nodiscard]] bool findCameraModel(
        const QString& name, const QString& serialNumber, bool exactSerial,
        CameraModelFromDB& model, bool internalOnly) const;
    /// The generic model of this name.
    [[nodiscard]] bool findCameraModel(
        const QString& name, CameraModelFromDB& model, bool internalOnly) const;
    /// The model for an image's identifiers.
    [[nodiscard]] bool findCameraModel(
        const ExifID& exifId, const QString& serialNumber, CameraModelFromDB& model,
        bool internalOnly) const;

    /// What findCameraModel copies, without the copy. Valid until the tables change.
    [[nodiscard]] StoredCameraModel storedCameraModel(
        const QString& name, const QString& serialNumber, bool exactSerial,
        bool internalOnly) const;
    [[nodiscard]] StoredCameraModel storedCameraModel(
        const ExifID& exifId, const QString& serialNumber, bool internalOnly) const;

    /// Whether exactly this name and serial number are held.
    [[nodiscard]] bool containsCameraModel(
        const QString& name, const QString& serialNumber, bool inInternal, bool inUser) const;

    /// The name of the camera model for an identifier: the one it is mapped to
    /// if there is such a model, else the identifier if there is a model of that
    /// name, else empty.
    [[nodiscard]] QString exifId2cameraName(const QString& exifId, bool internalOnly) const;
    /// The first identifier is tried, then the second. Empty at once if the first
    /// is not a valid camera name.
    [[nodiscard]] QString exifId2cameraName(const ExifID& exifId, bool internalOnly) const;

    /// The (name, serial number) pairs of all models that may serve the image (all
    /// models if `exif` is empty), by name, then serial number.
    void cameraNames(const ExifInfo& exif, std::vector<std::pair<QString, QString>>& names) const;

    /// The database entry that a camera would make: the held one with the camera's
    /// parameters and bands if it knows these bands by name, else a new one.
    /// \param[out] bandIndex  the camera's bands in the result
    [[nodiscard]] CameraModelFromDB convert2CameraModel(
        const CameraData& camera, const QString& exifId, std::size_t& bandIndex) const;

    /// Where a camera's parameters came from.
    [[nodiscard]] CameraSource calcCameraSource(
        const CameraData& camera, const ExifInfo& exif) const;

    /// The pixel size (mm) of a known camera at an image size that the database
    /// may not list, scaled from the nearest size that it lists by new size over
    /// stored size.
    /// \param[out] pixelSize  untouched on failure: an unknown camera, or no image
    ///     size in the first identifier
    [[nodiscard]] bool estimatePixelSize(const ExifID& exifId, double& pixelSize) const;

    // Editing the user database. False, with nothing changed, if editing is not
    // allowed. With `save` a change is also written to the user file, and the
    // result is that of writing.

    /// Holds the model as the user's. One that equals the internal entry removes
    /// the user's own instead; false if there was none, or nothing changed.
    [[nodiscard]] bool setCameraModel(const CameraModelFromDB& model, bool save);
    /// Adds the camera's bands to its model, which is made if it is not there.
    [[nodiscard]] bool addCamera(const CameraData& camera, bool save);
    /// Removes the user's entry, and the user's mappings to the name unless the
    /// internal tables hold exactly this entry.
    [[nodiscard]] bool removeCameraModel(
        const QString& name, const QString& serialNumber, bool save);
    /// Maps an identifier to a model name; a mapping that would say what holds
    /// without it is removed. Refuses an empty identifier and "none".
    /// \returns true also if nothing had to change; nothing is saved then
    [[nodiscard]] bool setMapping(const QString& exifId, const QString& cameraName, bool save);
    /// Holds the rig as the user's, likewise to setCameraModel. Sources and
    /// differences of poses within the tolerance are no change.
    [[nodiscard]] bool setRigModel(const RigModel& rig, bool save);
    [[nodiscard]] bool removeRigModel(const QString& name, bool save);

    // Rigs

    [[nodiscard]] bool containsRigModel(const QString& name, bool internalOnly) const;
    /// \param[out] rig  its source says where it came from; untouched if not found
    [[nodiscard]] bool findRigModel(const QString& name, RigModel& rig, bool internalOnly) const;
    /// The rig that fits the filter best.
    /// \param[out] rig  untouched if none fits
    [[nodiscard]] bool findBestRigModel(const rig_filter_t& filter, RigModel& rig) const;
    /// All rigs that match, best first, each name once, with their scores.
    void rigNamesWithScore(
        const rig_filter_t& filter, std::vector<std::pair<QString, int>>& names) const;
    /// Where a rig's data came from.
    [[nodiscard]] CameraSource calcRigSource(const RigModel& rig) const;

private:
    /// What an identifier is mapped to, whether there is such a model or not.
    [[nodiscard]] QString mappedName(const QString& exifId, bool internalOnly) const;
    /// Writes the user file; false, and logged, if that cannot be done.
    [[nodiscard]] bool saveUserDb();

    CameraDbSettings m_settings;
    bool m_userEnabled = true;
    bool m_userReadOnly = false;
    std::size_t m_userVersion = cameradb::kCurrentVersion;
    cameradb::CameraDBData m_internal;
    cameradb::CameraDBData m_user;
};

} // namespace lumo
