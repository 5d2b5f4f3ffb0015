// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace lumo::program {

/// Whether both paths, which links may stand in, lead to one file.
[[nodiscard]] bool isSameFile(const QString& one, const QString& other);

/// Whether nothing stands against a backup: nothing lies at its place, or the same from
/// before. What else was kept there is not given up.
/// \param[out] error  if not the reason, else untouched
[[nodiscard]] bool mayBackUp(const QString& file, const QString& backup, QString& error);

/// Copies a file to `backup` and reads the copy back, so that the file may be
/// replaced. A copy that mayBackUp found there counts.
/// \param[out] error  on failure the reason, else untouched
[[nodiscard]] bool backUp(const QString& file, const QString& backup, QString& error);

} // namespace lumo::program
