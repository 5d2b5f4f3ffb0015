// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "show/output.h"

#include <QStringList>

namespace lumo::program {

/// `lumo sequoia PATH...`: the Sequoia devices of the images, one record each.
/// \param cutFolder  where to write copies of the raw images without their debug
///     lines, one more record each; empty: none are written. Made if it is missing.
[[nodiscard]] ExitCode showSequoia(
    const QStringList& paths, const QString& cutFolder, const CommonOptions& options);

} // namespace lumo::program
