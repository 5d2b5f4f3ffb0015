// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/xml/param_converter.h"
#include "show/output.h"

#include <QStringList>

/// `lumo project`: project files and processing templates.
namespace lumo::program::project {

struct ConvertRequest
{
    QStringList paths; ///< files, or folders with projects and templates
    int target = kpx::kCurrentVersion;
    QString output; ///< empty: in place; a folder if there are several files
    QString backup = QStringLiteral("auto"); ///< "auto", "none" or a path
    bool dryRun = false;
};

/// Shows the versions of files and the steps of a conversion.
[[nodiscard]] ExitCode info(const QStringList& paths, const CommonOptions& options);
/// Brings files to the target version.
[[nodiscard]] ExitCode convert(const ConvertRequest& request, const CommonOptions& options);
/// Checks files against the schema of their own format version.
[[nodiscard]] ExitCode validate(const QStringList& paths, const CommonOptions& options);

} // namespace lumo::program::project
