// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "show/output.h"

#include <QByteArray>
#include <QStringList>

#include <functional>

namespace lumo::program::project {

/// Runs `action` for each project and template in the paths (files and folders), until
/// Ctrl-C. `action` returns the file's exit code; the text of an exception from it is
/// printed as the file's failure.
[[nodiscard]] ExitCode forEachFile(
    const QStringList& paths, const CommonOptions& options,
    const std::function<ExitCode(const QString& file)>& action);

/// Whether a document satisfies the schema of a format version.
/// \param[out] error  if not the reason, else untouched
[[nodiscard]] bool satisfiesSchema(
    const QByteArray& document, int version, bool isTemplate, QString& error);

} // namespace lumo::program::project
