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
/// It is tried, not asked: rights alone do not tell for root or on a file
/// system that is mounted read-only. What is there is not changed.
[[nodiscard]] LUMO_FOUNDATION_EXPORT bool readonly(const QString& path);

/// The path without its last part: "a/b.txt" -> "a", "b.txt" -> ".", "/b" -> "/".
/// Here and in `filename` slashes at the end do not count.
[[nodiscard]] LUMO_FOUNDATION_EXPORT QString dirname(const QString& path);

/// The last part: "a/b.txt" -> "b.txt".
[[nodiscard]] LUMO_FOUNDATION_EXPORT QString filename(const QString& path);

/// "folder/name" with one slash between; the other alone if one is empty.
[[nodiscard]] LUMO_FOUNDATION_EXPORT QString join(const QString& folder, const QString& name);

/// Backslashes become slashes; double slashes, "." and ".." are resolved.
[[nodiscard]] LUMO_FOUNDATION_EXPORT QString cleanup(const QString& path);

/// Whether both paths lead to one file or folder: through links (symbolic and hard),
/// relative or absolute. Where neither exists, whether they would.
[[nodiscard]] LUMO_FOUNDATION_EXPORT bool isSame(const QString& a, const QString& b);

/// The content of a regular file or Qt resource; a pipe or a device might never end.
/// \param maxBytes  whole MiB; what is larger is refused
/// \param[out] content  replaced on success, untouched on failure
/// \param[out] reason  on failure why, without the path, else untouched
[[nodiscard]] LUMO_FOUNDATION_EXPORT bool read(
    const QString& path, qint64 maxBytes, QByteArray& content, QString& reason);

/// Copies a file's content and mode to a path where nothing is yet, not even a
/// dangling link. The copy is flushed to the disk before it appears there;
/// nothing does when it fails.
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

/// Writes `content` to a path where nothing is yet, not even a dangling link: it
/// appears there whole and flushed to the disk, or not at all.
/// \param[out] error  on failure "PATH: reason", else untouched
[[nodiscard]] LUMO_FOUNDATION_EXPORT bool writeNew(
    const QString& path, const QByteArray& content, QFileDevice::Permissions permissions,
    QString& error);

/// Makes `content` the file at `path`, as a whole or not at all: it is written
/// beside it, flushed to the disk and renamed. A link is followed. Mode and
/// owner of a file that was there are kept as far as this process may set them;
/// other names (hard links) of it keep the old content. Refuses what is not a
/// regular file, and a file that this process may not write to.
/// \param[out] error  on failure "PATH: reason", else untouched
[[nodiscard]] LUMO_FOUNDATION_EXPORT bool replaceAtomically(
    const QString& path, const QByteArray& content, QString& error);

} // namespace lumo::file
