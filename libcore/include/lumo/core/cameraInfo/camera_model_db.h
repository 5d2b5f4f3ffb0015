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

/// A pointer to a camera model in the database's own tables, and its source.
struct StoredCameraModel
{
    const CameraModelFromDB* model = nullptr; ///< null if none was found
    /// The table that the model came from, as findCameraModel() sets it in a copy.
    /// The stored model's own params.source may differ.
    CameraSource source = CameraSource::Custom;

    explicit operator bool() const { return model != nullptr; }
};

/// The camera model database in memory: the internal (shipped) tables and the
/// user's own. If both have an entry under one key, the user's entry wins.
/// findCameraModel() makes one exception, for serial numbers.
///
/// A value without a lock: only one thread at a time may use a store.
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

    /// Finds the model of this name for one camera body. Takes the entry with the
    /// serial number. Unless `exactSerial`, the next choices are the generic entry
    /// (no serial number) and then the first entry of the name. A user's entry goes
    /// before an internal one that fits the body equally well.
    /// \param[out] model  a copy, with params.source set to the table it came
    ///     from; untouched if nothing is found
    [[nodiscard]] bool findCameraModel(
        const QString& name, const QString& serialNumber, bool exactSerial,
        CameraModelFromDB& model, bool internalOnly) const;
    /// Finds the generic model of this name (no serial number).
    [[nodiscard]] bool findCameraModel(
        const QString& name, CameraModelFromDB& model, bool internalOnly) const;
    /// Finds the model for an image's identifiers, as exifId2cameraName() names it.
    [[nodiscard]] bool findCameraModel(
        const ExifID& exifId, const QString& serialNumber, CameraModelFromDB& model,
        bool internalOnly) const;

    /// As findCameraModel() of the same arguments, without the copy. The result is
    /// valid until the tables change.
    [[nodiscard]] StoredCameraModel storedCameraModel(
        const QString& name, const QString& serialNumber, bool exactSerial,
        bool internalOnly) const;
    [[nodiscard]] StoredCameraModel storedCameraModel(
        const ExifID& exifId, const QString& serialNumber, bool internalOnly) const;

    /// Whether one of the chosen tables has an entry of exactly this name and
    /// serial number.
    [[nodiscard]] bool containsCameraModel(
        const QString& name, const QString& serialNumber, bool inInternal, bool inUser) const;

    /// The name of the camera model for an identifier: the name that the identifier
    /// is mapped to, if that model exists; else the identifier itself, if a model of
    /// that name exists; else empty.
    [[nodiscard]] QString exifId2cameraName(const QString& exifId, bool internalOnly) const;
    /// Tries the first identifier, then the second. Empty, without a second try, if
    /// the first is not a valid camera name.
    [[nodiscard]] QString exifId2cameraName(const ExifID& exifId, bool internalOnly) const;

    /// The (name, serial number) pairs of all models that may serve the image (all
    /// models if `exif` is empty), by name, then serial number.
    void cameraNames(const ExifInfo& exif, std::vector<std::pair<QString, QString>>& names) const;

    /// The database entry for a camera. Starts from the stored model if that has a
    /// band configuration with the camera's band names, else from a new model. Sets
    /// the camera's parameters and bands in it. Changes no table.
    /// \param[out] bandIndex  index of the camera's bands in the result's bandConfigs
    [[nodiscard]] CameraModelFromDB convert2CameraModel(
        const CameraData& camera, const QString& exifId, std::size_t& bandIndex) const;

    /// Where a camera's parameters came from.
    [[nodiscard]] CameraSource calcCameraSource(
        const CameraData& camera, const ExifInfo& exif) const;

    /// Estimates the pixel size of a known camera at an image size that the
    /// database need not list. Scales from the nearest size that the database
    /// lists, by new size over stored size.
    /// \param[out] pixelSize  in mm; untouched on failure
    /// \returns false if the camera is unknown or the first identifier has no image
    ///     size
    [[nodiscard]] bool estimatePixelSize(const ExifID& exifId, double& pixelSize) const;

    // Editing the user database. False, with nothing changed, if editing is not
    // allowed. With `save` a change is also written to the user file, and the
    // result is that of writing.

    /// Stores the model in the user tables. If the model equals the internal entry,
    /// removes the user's entry instead, so that the internal one applies again.
    /// \returns false also if nothing had to change
    [[nodiscard]] bool setCameraModel(const CameraModelFromDB& model, bool save);
    /// Adds the camera's bands to its model in the user tables; makes the model if
    /// there is none.
    [[nodiscard]] bool addCamera(const CameraData& camera, bool save);
    /// Removes the user's entry, and the user's mappings to the name unless the
    /// internal tables hold exactly this entry.
    [[nodiscard]] bool removeCameraModel(
        const QString& name, const QString& serialNumber, bool save);
    /// Maps an identifier to a model name. Removes the user's mapping instead if
    /// the internal tables lead to the same name without it. Refuses an empty
    /// identifier and "none".
    /// \returns true also if nothing had to change; nothing is saved then
    [[nodiscard]] bool setMapping(const QString& exifId, const QString& cameraName, bool save);
    /// Stores the rig in the user tables. If the rig equals the internal entry,
    /// removes the user's entry instead. Rigs that differ only in their source, or
    /// in poses within the tolerance of rig_relatives_t, are equal.
    /// \returns false also if nothing had to change
    [[nodiscard]] bool setRigModel(const RigModel& rig, bool save);
    [[nodiscard]] bool removeRigModel(const QString& name, bool save);

    // Rigs

    [[nodiscard]] bool containsRigModel(const QString& name, bool internalOnly) const;
    /// Finds the rig of this name; the user's goes before the internal one.
    /// \param[out] rig  a copy, with `source` set to the table it came from;
    ///     untouched if not found
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
    /// The name that an identifier is mapped to, whether or not that model exists.
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
