// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/foundation/export.h"

#include <QFileDevice>
#include <QString>

class QByteArray;

/// Paths and whole files. Paths use "/" on every system.
namespace lumo::file {

/// Whether there is a file or folder at `path`; a link counts as what it points to.
[[nodiscard]] LUMO_FOUNDATION_EXPORT bool exists(const QString& path);

/// Makes the folder and all that are missing above it; true if it is there afterwards.
[[nodiscard]] LUMO_FOUNDATION_EXPORT bool mkdir(const QString& path);

/// Whether the file or folder exists and this process may not write to it.
/// Tries to open it for writing: permissions alone would be wrong for root and on a
/// file system that is mounted read-only. Changes nothing.
[[nodiscard]] LUMO_FOUNDATION_EXPORT bool readonly(const QString& path);

/// The path without its last part: "a/b.txt" -> "a", "b.txt" -> ".", "/b" -> "/".
/// Ignores slashes at the end, as filename() does.
[[nodiscard]] LUMO_FOUNDATION_EXPORT QString dirname(const QString& path);

/// The last part of the path: "a/b.txt" -> "b.txt", "a/b/" -> "b".
[[nodiscard]] LUMO_FOUNDATION_EXPORT QString filename(const QString& path);

/// "folder/name" with exactly one slash between; if one is empty, the other unchanged.
[[nodiscard]] LUMO_FOUNDATION_EXPORT QString join(const QString& folder, const QString& name);

/// The path with backslashes turned into slashes, and double slashes, "." and ".."
/// resolved. Does not look at the disk.
[[nodiscard]] LUMO_FOUNDATION_EXPORT QString cleanup(const QString& path);

/// Whether both paths lead to one file or folder: through links (symbolic and hard),
/// relative or absolute. Where neither exists, whether they would.
[[nodiscard]] LUMO_FOUNDATION_EXPORT bool isSame(const QString& a, const QString& b);

/// Reads a regular file or a Qt resource. Refuses pipes and devices, which might never
/// end.
/// \param maxBytes  largest size accepted, a whole number of MiB
/// \param[out] content  replaced on success, untouched on failure
/// \param[out] reason  on failure the reason without the path, else untouched
[[nodiscard]] LUMO_FOUNDATION_EXPORT bool read(
    const QString& path, qint64 maxBytes, QByteArray& content, QString& reason);

/// Copies a file's content and mode to `target`, where nothing may exist, not even a
/// dangling link. The copy appears at `target` complete and flushed to the disk; after
/// a failure nothing appears.
/// \param[out] error  on failure "PATH: reason", else untouched
[[nodiscard]] LUMO_FOUNDATION_EXPORT bool copy(
    const QString& source, const QString& target, QString& error);

/// Whether backUp() would not be refused for what is at `backup`: nothing, or a file of
/// the same content (an earlier backup). For a program to ask before it starts long work.
/// \param[out] error  when false "PATH: reason", else untouched
[[nodiscard]] LUMO_FOUNDATION_EXPORT bool mayBackUp(
    const QString& path, const QString& backup, QString& error);

/// Makes sure that `backup` is a file of its own with the content of `path`, so that
/// `path` may be replaced. Copies content and mode, makes missing folders, flushes the
/// copy to the disk, reads it back and compares it before it appears at `backup`. Never
/// replaces a file: one of the same content counts as the backup, another is an error.
/// \param[out] error  on failure "PATH: reason", else untouched
[[nodiscard]] LUMO_FOUNDATION_EXPORT bool backUp(
    const QString& path, const QString& backup, QString& error);

/// Creates a file at `path`, where nothing may exist, not even a dangling link. The
/// file appears complete and flushed to the disk; after a failure nothing appears.
/// \param[out] error  on failure "PATH: reason", else untouched
[[nodiscard]] LUMO_FOUNDATION_EXPORT bool writeNew(
    const QString& path, const QByteArray& content, QFileDevice::Permissions permissions,
    QString& error);

/// Creates the file at `path` or replaces it, completely or not at all: writes a
/// temporary file in the same folder, flushes it to the disk and renames it. Follows
/// symbolic links. Keeps mode and owner of the replaced file as far as this process may
/// set them; its hard links keep the old content. Refuses what is not a regular file,
/// and a file or folder that this process may not write to.
/// \param[out] error  on failure "PATH: reason", else untouched
[[nodiscard]] LUMO_FOUNDATION_EXPORT bool replaceAtomically(
    const QString& path, const QByteArray& content, QString& error);

} // namespace lumo::file
