// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QSet>
#include <QStringList>

#include <functional>

namespace lumo::program {

/// Called for each path that cannot be listed, with the reason.
using PathFailure = std::function<void(const QString& path, const QString& reason)>;

/// The files that the arguments stand for: a file as it is, whatever its name; a
/// folder with all files below it that have one of the extensions, in the order
/// of their paths. Links to folders are not followed, so there are no loops.
/// \param extensions  in lower case, without dot
[[nodiscard]] QStringList listFiles(
    const QStringList& arguments, const QSet<QString>& extensions, const PathFailure& failed);

} // namespace lumo::program
