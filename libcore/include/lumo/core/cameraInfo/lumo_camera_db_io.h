// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QString>

namespace lumo {

class CameraModelDb;
namespace cameradb {
struct CameraDBData;
}

/// Moves the camera database between a store and its files, as the store's
/// settings say. The store must outlive it. Failures are logged; of each function there is
/// one that reports the reason, too, in `error` ("FILE: reason"), which is untouched on
/// success.
class LUMO_CORE_EXPORT CameraDbIo
{
public:
    explicit CameraDbIo(CameraModelDb& database);

    /// Loads the internal tables, the user tables or both (an empty name: not
    /// that one) in place of what the store holds of them. Tables whose load
    /// fails are left empty.
    [[nodiscard]] bool loadXML(const QString& internalFile, const QString& userFile);
    [[nodiscard]] bool loadXML(
        const QString& internalFile, const QString& userFile, QString& error);

    /// Merges a user document into the user tables; one of an older version is
    /// converted first, which needs registerXmlConverters().
    /// \param overwrite  its entries replace those of the same name
    [[nodiscard]] bool addUserXML(const QString& file, bool overwrite);
    [[nodiscard]] bool addUserXML(const QString& file, bool overwrite, QString& error);

    /// Brings the newest user file of an older version to the current one, saves
    /// it there and loads it. False if there is none, or that failed; then there is
    /// no folder of the current version that was not there before.
    [[nodiscard]] bool loadAndSavePreviousUserXML();
    /// \param[out] error  "FILE: reason" if a user file of an older version is there
    ///     and could not be brought forward, else untouched
    [[nodiscard]] bool loadAndSavePreviousUserXML(QString& error);

    /// Loads the internal tables from a text database (empty: the shipped one)
    /// and writes the internal file, whose hash the settings keep.
    /// Needs application settings and a data directory.
    [[nodiscard]] bool loadAndSaveInternalTextDB(const QString& textFile);
    [[nodiscard]] bool loadAndSaveInternalTextDB(const QString& textFile, QString& error);

    /// Loads a text database into the user's or the internal tables, in place of
    /// what they hold.
    [[nodiscard]] bool loadTextDB(const QString& textFile, bool userDatabase);
    [[nodiscard]] bool loadTextDB(const QString& textFile, bool userDatabase, QString& error);

    /// Writes the user tables to the user file of the current version.
    /// This and other changes are refused if the store does not allow editing.
    [[nodiscard]] bool saveUserXML() const;
    [[nodiscard]] bool saveUserXML(QString& error) const;

    /// Writes the user tables to `file`, whose folder is made.
    [[nodiscard]] bool exportUserXML(const QString& file) const;
    [[nodiscard]] bool exportUserXML(const QString& file, QString& error) const;

    /// Empties the user tables and, if they held anything, saves.
    bool clearUserXML();
    [[nodiscard]] bool clearUserXML(QString& error);

private:
    [[nodiscard]] bool loadXMLPrivate(
        const QString& file, bool userDatabase, std::size_t& version, bool merge, bool overwrite,
        QString& error);
    [[nodiscard]] bool exportXML(
        const QString& file, bool internalOnly, unsigned& hash, QString& error) const;
    /// Makes the current user file, with its folder, of that of an older version.
    [[nodiscard]] bool convertUserFile(std::size_t version, QString& error);

    CameraModelDb& m_database;
};

/// The schema of the current format, below the application directory.
[[nodiscard]] LUMO_CORE_EXPORT QString cameraDbSchemaPath();

/// Whether a file satisfies the schema of the current format.
[[nodiscard]] LUMO_CORE_EXPORT bool hasDbLastestFormat(const QString& file);
/// As hasDbLastestFormat(file), and reports why it does not.
/// \param[out] error  if not, the first fault as "line L, column C: reason", or why
///     the schema or the file cannot be read; else untouched
[[nodiscard]] LUMO_CORE_EXPORT bool hasDbLastestFormat(const QString& file, QString& error);

/// Fills a store at the start of a program: carries an older user file forward,
/// loads the internal file (making it anew from the shipped text database if it
/// is missing, was edited, or was made by a version that ships another one), then the
/// user file. Where no internal file can be made, and without a data directory, the
/// shipped database is held in memory alone. A disabled user database stays empty.
///
/// A user file that does not load, or holds records that cannot be used, makes the user
/// database read-only, so that nothing overwrites it; in the second case the other
/// records are there. So does an older one that cannot be carried forward; then nothing
/// is written, for the folder of the current version would keep the next start from
/// trying again.
/// \param[out] error  on failure what failed, else untouched
/// \returns false if the internal tables are empty, or the user file did not load as
///     a whole
[[nodiscard]] LUMO_CORE_EXPORT bool loadCameraDatabases(CameraModelDb& database, QString& error);

} // namespace lumo
