// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "show/output.h"

#include <QStringList>

namespace lumo::program {

/// `lumo identify PATH...`: one record per image file, as a table or as JSON.
/// \param explain  with all candidates and evidence, in a block per file instead of
///     the table
[[nodiscard]] ExitCode identify(
    const QStringList& paths, bool explain, const CommonOptions& options);

} // namespace lumo::program
