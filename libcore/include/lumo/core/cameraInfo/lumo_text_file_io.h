// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QString>

namespace lumo {

/// A whole text file in memory, UTF-8 on disk. Failures are logged.
class LUMO_CORE_EXPORT TextFileIO
{
public:
    /// Replaces the content by that of the file.
    /// \param lock  keep a FileLock while reading, and wait for it at most 5 s. In a
    ///     read-only folder the file is read without a lock.
    /// \returns false if the file cannot be opened, locked or read, is empty, or is
    ///     not UTF-8; the content is then empty
    [[nodiscard]] bool readFile(const QString& path, bool lock);
    /// As readFile(path, lock), and reports why it failed.
    /// \param[out] error  on failure "PATH: reason", else untouched
    [[nodiscard]] bool readFile(const QString& path, bool lock, QString& error);

    /// Replaces the file at `path` by the content, completely or not at all.
    /// \param lock  keep a FileLock while writing, and wait for it at most 5 s
    [[nodiscard]] bool writeFile(const QString& path, bool lock);
    /// As writeFile(path, lock), and reports why it failed.
    /// \param[out] error  on failure "PATH: reason", else untouched
    [[nodiscard]] bool writeFile(const QString& path, bool lock, QString& error);

    [[nodiscard]] QString& content() { return m_content; }
    [[nodiscard]] const QString& content() const { return m_content; }

private:
    QString m_content;
};

} // namespace lumo
