// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/camera_db_data.h"
#include "lumo/core/export.h"

#include <QString>

#include <cstddef>
#include <utility>
#include <vector>

class QDomDocument;
class QXmlStreamWriter;

/// The XML form of a camera database:
///
///     <cameraModelDB>
///         <version>19</version>
///         <NAME value="VALUE"/>              one a header pair
///         <rigs> <rig ...>...</rig> </rigs>
///         <cameras> <camera name="...">...</camera> </cameras>
///         <mappings> <mapping exif="..." camera="..."/> </mappings>
///     </cameraModelDB>
namespace lumo::cameradb {

/// Names and values that stand behind the version; reading skips them.
using HeaderPairs = std::vector<std::pair<QString, QString>>;

/// Reads a document into the tables of one database.
///
/// Only `cameras` has to be there. Cameras and rigs that are not valid are left
/// out, and of two records under one key (cameras: name and serial number) the
/// later counts; each record that is lost so is logged as a warning, and stands in
/// `data.skipped` unless the document is merged. The source of cameras becomes
/// InternalDatabase, or for a user database UserDatabase unless it is
/// EditedDatabase or Exif.
///
/// Otherwise than merging, the tables are emptied first, also if reading fails
/// then; `modified` says whether they hold or (on failure) held anything.
/// A user database that is merged leaves the tables as they are on failure, and
/// adds what they have no entry of that name for. With `overwrite` it adds all:
/// a camera in place of the one with its name and serial number. `modified` then
/// says whether anything was added.
/// \param merge  of effect for a user database only
/// \returns false, with a reason in the log, if it is no camera database or has
///     no cameras element
[[nodiscard]] LUMO_CORE_EXPORT bool getXML(
    const QDomDocument& document, bool userDatabase, bool merge, bool overwrite, CameraDBData& data,
    bool& modified);
/// As the function above, and reports why it failed.
/// \param[out] error  on failure which element is missing, else untouched
[[nodiscard]] LUMO_CORE_EXPORT bool getXML(
    const QDomDocument& document, bool userDatabase, bool merge, bool overwrite, CameraDBData& data,
    bool& modified, QString& error);

/// Reads a document of the current version as a user database, for a look at it.
/// \param[out] data   replaced on success, untouched on failure
/// \param[out] error  on failure "PATH: reason", else untouched
[[nodiscard]] LUMO_CORE_EXPORT bool loadDocument(
    const QString& file, CameraDBData& data, QString& error);

/// The format version of a document: the attribute `value` of element `version`,
/// else its text; 0 if there is none.
[[nodiscard]] LUMO_CORE_EXPORT std::size_t documentVersion(const QDomDocument& document);

/// Whether a database of this version may be read; if not, or if it is newer,
/// the log says so. An older user database may: it can be converted.
/// \param allowHigher  whether a user database may be newer than this program
[[nodiscard]] LUMO_CORE_EXPORT bool versionSupported(
    std::size_t version, bool userDatabase, bool allowHigher);
/// As versionSupported(version, userDatabase, allowHigher), and reports why it failed.
/// \param[out] error  if not supported, the versions; else untouched
[[nodiscard]] LUMO_CORE_EXPORT bool versionSupported(
    std::size_t version, bool userDatabase, bool allowHigher, QString& error);

/// Writes the element cameraModelDB. Cameras that are not valid are left out.
/// What documentText refuses is written as it is.
LUMO_CORE_EXPORT void writeXML(
    QXmlStreamWriter& writer, const HeaderPairs& headerPairs, const CameraDBData& data);

/// The whole document as text, for a UTF-8 file; one tab a level.
///
/// Refused is what reading would not give back: a text with a character that XML
/// forbids, a number of a rig that is not finite, an image size or index beyond 32
/// bits, and a header pair whose name is no element name or one of the database's own.
/// \param[out] text   replaced on success, untouched on failure
/// \param[out] error  on failure which field of which record and why, else untouched
[[nodiscard]] LUMO_CORE_EXPORT bool documentText(
    const HeaderPairs& headerPairs, const CameraDBData& data, QString& text, QString& error);

} // namespace lumo::cameradb
