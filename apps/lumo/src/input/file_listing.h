// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

#include <functional>

namespace lumo::program {

/// Called for each path that cannot be listed, with the reason.
using PathFailure = std::function<void(const QString& path, const QString& reason)>;

/// Whether a folder's file of this name is asked for.
using NameFilter = std::function<bool(const QString& name)>;

/// The files that the arguments stand for: a file as it is, whatever its name; a
/// folder with all files below it that are `wanted`, in the order of their paths.
/// Links to folders are not followed, so there are no loops. Of a folder
/// without any such file it is said; no failure.
[[nodiscard]] QStringList listFiles(
    const QStringList& arguments, const NameFilter& wanted, const PathFailure& failed);

} // namespace lumo::program
