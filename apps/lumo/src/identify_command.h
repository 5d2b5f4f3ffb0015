// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "output.h"

#include <QStringList>

namespace lumo::program {

/// `lumo identify PATH...`: one record per image file, as a table or as JSON.
[[nodiscard]] ExitCode identify(const QStringList& paths, const CommonOptions& options);

} // namespace lumo::program
