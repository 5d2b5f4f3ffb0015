// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "show/output.h"

#include <QStringList>

namespace lumo::program {

/// `lumo rig PATH...`: groups images into captures and shows which rig took each.
/// \param matrix  show captures against cameras, with gaps
[[nodiscard]] ExitCode identifyRigs(
    const QStringList& paths, bool matrix, const CommonOptions& options);

/// `lumo rig --save NAME PATH...`: makes a rig from the images' metadata and saves it in
/// the user's database.
/// \param overwrite  replace a rig of this name
[[nodiscard]] ExitCode saveRig(
    const QStringList& paths, const QString& name, bool overwrite, const CommonOptions& options);

} // namespace lumo::program
