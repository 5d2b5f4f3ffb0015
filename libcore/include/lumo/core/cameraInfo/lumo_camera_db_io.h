// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QString>

namespace lumo {

class CameraModelDb;
namespace cameradb {
struct CameraDBData;
}

/// Loads and saves the camera database of a store, with the paths from the store's
/// settings. The store must outlive this object. One thread at a time.
///
/// Failures are logged. The overload with `error` also reports the reason, as
/// "FILE: reason"; it leaves `error` untouched on success.
class LUMO_CORE_EXPORT CameraDbIo
{
public:
    explicit CameraDbIo(CameraModelDb& database);

    /// Replaces the internal tables, the user tables, or both by those of the files.
    /// An empty name leaves that side unchanged. Tables whose load fails become
    /// empty.
    [[nodiscard]] bool loadXML(const QString& internalFile, const QString& userFile);
    [[nodiscard]] bool loadXML(
        const QString& internalFile, const QString& userFile, QString& error);

    /// Merges a user document into the user tables. A document of an older version
    /// is converted first, which needs registerXmlConverters().
    /// \param overwrite  entries of the document replace the user's of the same name
    [[nodiscard]] bool addUserXML(const QString& file, bool overwrite);
    [[nodiscard]] bool addUserXML(const QString& file, bool overwrite, QString& error);

    /// Converts the newest user file of an older version to the current one, saves
    /// the result as the current user file, and loads it.
    /// \returns false if there is no older file or the conversion failed. A failure
    ///     leaves no new folder of the current version behind.
    [[nodiscard]] bool loadAndSavePreviousUserXML();
    /// As loadAndSavePreviousUserXML(), and reports why it failed.
    /// \param[out] error  "FILE: reason" if there is an older user file that could
    ///     not be converted, else untouched
    [[nodiscard]] bool loadAndSavePreviousUserXML(QString& error);

    /// Loads the internal tables from a text database (empty: the shipped one)
    /// and writes the internal file, whose hash the settings keep.
    /// Needs application settings and a data directory.
    [[nodiscard]] bool loadAndSaveInternalTextDB(const QString& textFile);
    [[nodiscard]] bool loadAndSaveInternalTextDB(const QString& textFile, QString& error);

    /// Replaces the user's or the internal tables by those of a text database.
    [[nodiscard]] bool loadTextDB(const QString& textFile, bool userDatabase);
    [[nodiscard]] bool loadTextDB(const QString& textFile, bool userDatabase, QString& error);

    /// Writes the user tables to the user file of the current version. Fails if the
    /// store does not allow editing, as do all changes below.
    [[nodiscard]] bool saveUserXML() const;
    [[nodiscard]] bool saveUserXML(QString& error) const;

    /// Writes the user tables to `file`, and creates its folder.
    [[nodiscard]] bool exportUserXML(const QString& file) const;
    [[nodiscard]] bool exportUserXML(const QString& file, QString& error) const;

    /// Empties the user tables. Saves unless they were empty before.
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

/// Fills a store at the start of a program, in three steps:
///  1. converts an older user file to the current version
///  2. loads the internal file. The file is first rewritten from the shipped text
///     database if it is missing, was edited, or came from another shipped database.
///     Without a data directory, or if the file cannot be written, the shipped
///     database is loaded into memory only.
///  3. loads the user file, unless the user database is disabled
///
/// The user database becomes read-only if its file does not load, so that nothing
/// overwrites the file. The same happens if single records cannot be used; all other
/// records are loaded. It also becomes read-only if an older user file cannot be
/// converted. In that case nothing is written: a folder of the current version would
/// keep the next start from trying the conversion again.
/// \param[out] error  on failure what failed, else untouched
/// \returns false if the internal tables are empty, or the user file did not load
///     completely
[[nodiscard]] LUMO_CORE_EXPORT bool loadCameraDatabases(CameraModelDb& database, QString& error);

} // namespace lumo
