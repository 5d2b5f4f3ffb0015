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

/// Names and values of the elements written after the version; reading skips them.
using HeaderPairs = std::vector<std::pair<QString, QString>>;

/// Reads a document into the tables of one database.
///
/// The element `cameras` is required, all others are optional. Cameras and rigs that
/// are not valid are left out. Of two records under one key (for cameras: name and
/// serial number) the later one counts. Each record that is lost in one of these
/// ways is logged as a warning and, unless the document is merged, listed in
/// `data.skipped`. Cameras of the internal database get the source
/// InternalDatabase; those of a user database get UserDatabase unless their source
/// is EditedDatabase or Exif.
///
/// Without `merge` the tables are emptied first, even if reading then fails.
/// With `merge` a failure leaves the tables unchanged. Merging adds records whose name
/// is not in the tables. With `overwrite` it adds all records, and a camera
/// replaces the one of the same name and serial number.
/// \param merge  has an effect for a user database only
/// \param[out] modified  with `merge`: whether a record was added. Else: whether
///     the tables have an entry now or, on failure, had one before
/// \returns false, with a reason in the log, if the document is not a camera
///     database or has no element `cameras`
[[nodiscard]] LUMO_CORE_EXPORT bool getXML(
    const QDomDocument& document, bool userDatabase, bool merge, bool overwrite, CameraDBData& data,
    bool& modified);
/// As getXML without `error`, and reports why it failed.
/// \param[out] error  on failure which element is missing, else untouched
[[nodiscard]] LUMO_CORE_EXPORT bool getXML(
    const QDomDocument& document, bool userDatabase, bool merge, bool overwrite, CameraDBData& data,
    bool& modified, QString& error);

/// Reads a document of the current version as a user database, without a store.
/// \param[out] data   replaced on success, untouched on failure
/// \param[out] error  on failure "PATH: reason", else untouched
[[nodiscard]] LUMO_CORE_EXPORT bool loadDocument(
    const QString& file, CameraDBData& data, QString& error);

/// The format version of a document: the attribute `value` of element `version`,
/// else its text; 0 if there is none.
[[nodiscard]] LUMO_CORE_EXPORT std::size_t documentVersion(const QDomDocument& document);

/// Whether a database of this version may be read. An older user database may,
/// because it can be converted. Logs a version that may not be read, and a newer
/// one that may.
/// \param allowHigher  accept a user database of a newer version than this program's
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
/// Refuses values that reading would not restore: a text with a character that XML
/// forbids, a number of a rig that is not finite, an image size or index beyond 32
/// bits, and a header pair whose name is not an element name or is an element of the
/// database itself.
/// \param[out] text   replaced on success, untouched on failure
/// \param[out] error  on failure which field of which record and why, else untouched
[[nodiscard]] LUMO_CORE_EXPORT bool documentText(
    const HeaderPairs& headerPairs, const CameraDBData& data, QString& text, QString& error);

} // namespace lumo::cameradb
