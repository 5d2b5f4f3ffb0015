// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QString>

namespace lumo {

/// A whole text file in memory, UTF-8 on disk. Failures are logged.
class LUMO_CORE_EXPORT TextFileIO
{
public:
    /// Reads the file in place of what was held.
    /// \param lock  hold a FileLock while reading, waiting for it 5 s at most; in a
    ///     folder that may only be read the file is read without
    /// \returns false if the file cannot be opened, locked or read, is empty or is
    ///     no UTF-8; nothing is held then
    [[nodiscard]] bool readFile(const QString& path, bool lock);
    /// As readFile(path, lock), and reports why it failed.
    /// \param[out] error  on failure "PATH: reason", else untouched
    [[nodiscard]] bool readFile(const QString& path, bool lock, QString& error);

    /// Makes the content the file at `path`, whole or not at all.
    /// \param lock  hold a FileLock meanwhile, waiting for it 5 s at most
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
