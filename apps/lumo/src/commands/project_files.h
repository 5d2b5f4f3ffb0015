// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "show/output.h"

#include <QByteArray>
#include <QStringList>

#include <functional>

namespace lumo::program::project {

/// Runs `action` for each project and template that the paths stand for, until
/// Ctrl-C. It returns what became of the file; an exception's text is said.
[[nodiscard]] ExitCode forEachFile(
    const QStringList& paths, const CommonOptions& options,
    const std::function<ExitCode(const QString& file)>& action);

/// Whether a document satisfies the schema of a format version.
/// \param[out] error  if not the reason, else untouched
[[nodiscard]] bool satisfiesSchema(
    const QByteArray& document, int version, bool isTemplate, QString& error);

} // namespace lumo::program::project
