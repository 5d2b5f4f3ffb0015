// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

#include <functional>

namespace lumo::program {

/// Called for each path that cannot be listed, with the reason.
using PathFailure = std::function<void(const QString& path, const QString& reason)>;

/// The image files that the arguments stand for: a file as it is, whatever its
/// name; a folder with all image files below it (by file name extension), in
/// the order of their paths. Links to folders are not followed, so there are no loops.
[[nodiscard]] QStringList listImageFiles(const QStringList& arguments, const PathFailure& failed);

} // namespace lumo::program
