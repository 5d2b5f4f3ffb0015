// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace lumo::program {

/// Whether both paths lead to the same file, also through links.
[[nodiscard]] bool isSameFile(const QString& one, const QString& other);

/// Whether a backup may be made: there is no file at its path, or a file of the same
/// content from an earlier run. Any other file there must not be overwritten.
/// \param[out] error  if not the reason, else untouched
[[nodiscard]] bool mayBackUp(const QString& file, const QString& backup, QString& error);

/// Copies a file to `backup`, reads the copy back and compares it, so that the file may
/// be replaced. An equal file that is there already counts as the copy.
/// \param[out] error  on failure the reason, else untouched
[[nodiscard]] bool backUp(const QString& file, const QString& backup, QString& error);

} // namespace lumo::program
