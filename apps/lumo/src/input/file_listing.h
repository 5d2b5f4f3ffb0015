// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

#include <functional>

namespace lumo::program {

/// Called for each path that cannot be listed, with the reason.
using PathFailure = std::function<void(const QString& path, const QString& reason)>;

/// Whether a folder's file of this name is asked for.
using NameFilter = std::function<bool(const QString& name)>;

/// Lists the files of the arguments. A file is listed whatever its name. A folder
/// gives all files below it that are `wanted`, sorted by path. Links to folders are
/// not followed, which avoids loops. A folder without wanted files causes a remark on
/// the standard error stream, not a failure.
[[nodiscard]] QStringList listFiles(
    const QStringList& arguments, const NameFilter& wanted, const PathFailure& failed);

} // namespace lumo::program
